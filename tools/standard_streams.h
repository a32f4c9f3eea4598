#pragma once

#include <exception>
#include <ostream>
#include <streambuf>
#include <string_view>

namespace Calder::Tools {

/// Results that could not be written to standard output.
class ResultsLost : public std::exception {
  public:
    explicit ResultsLost(int error) : m_error(error) {}
    char const* what() const noexcept override { return "standard output cannot be written"; }
    /// An errno.
    int error() const { return m_error; }

  private:
    int m_error;
};

/// To be called before anything is opened or written. A standard stream that is closed gets a
/// descriptor that refuses to be used, lest the next file that is opened take its place. A reader of
/// ours that goes away becomes an error like any other, so that we can clean up.
void prepare_standard_streams();

/// Throws ResultsLost.
void print_result(std::string_view text);
/// Results are buffered: only after this are they known to be written. Throws ResultsLost.
void finish_results();

/// Writes to standard error as much as that takes; allocates nothing.
void print_message(std::string_view text) noexcept;

/// Where only the reader of results has gone, as in `calder print FILE | head -1`, the program ends by
/// SIGPIPE, as programs do. Otherwise it is for the caller to say that they are lost.
void end_where_reader_has_gone(ResultsLost const& lost);

/// Standard output for what prints itself to a stream. A failure is thrown as ResultsLost.
class ResultStream : public std::ostream {
  public:
    ResultStream() : std::ostream(nullptr) {
        rdbuf(&m_buffer);
        exceptions(badbit);
    }

  private:
    class Buffer : public std::streambuf {
      protected:
        int_type overflow(int_type letter) override;
        std::streamsize xsputn(char const* text, std::streamsize length) override;
    };

    Buffer m_buffer;
};

} // namespace Calder::Tools
