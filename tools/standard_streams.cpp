#include "tools/standard_streams.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace Calder::Tools {

namespace {

/// What a reader who goes away does to us by the wish of our caller.
struct sigaction given_pipe_action {};

/// Opened the wrong way round, so that to use it is an error.
void replace_if_closed(int descriptor, int wrong_way) {
    if (fcntl(descriptor, F_GETFD) >= 0) {
        return;
    }
    int const opened = open("/dev/null", wrong_way);
    if (opened >= 0 && opened != descriptor) {
        dup2(opened, descriptor);
        close(opened);
    }
}

} // namespace

void prepare_standard_streams() {
    replace_if_closed(STDIN_FILENO, O_WRONLY);
    replace_if_closed(STDOUT_FILENO, O_RDONLY);
    replace_if_closed(STDERR_FILENO, O_RDONLY);
    struct sigaction ignored {};
    ignored.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &ignored, &given_pipe_action);
}

void print_result(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
        throw ResultsLost(errno);
    }
}

void finish_results() {
    if (std::fflush(stdout) != 0) {
        throw ResultsLost(errno);
    }
}

void print_message(std::string_view text) noexcept {
    std::fwrite(text.data(), 1, text.size(), stderr);
}

void end_where_reader_has_gone(ResultsLost const& lost) {
    if (lost.error() == EPIPE) {
        sigaction(SIGPIPE, &given_pipe_action, nullptr);
        std::raise(SIGPIPE); // comes back where our caller ignores it
    }
}

ResultStream::Buffer::int_type ResultStream::Buffer::overflow(int_type letter) {
    if (traits_type::eq_int_type(letter, traits_type::eof())) {
        return traits_type::not_eof(letter);
    }
    char const text = traits_type::to_char_type(letter);
    print_result({&text, 1});
    return letter;
}

std::streamsize ResultStream::Buffer::xsputn(char const* text, std::streamsize length) {
    print_result({text, static_cast<std::size_t>(length)});
    return length;
}

} // namespace Calder::Tools
