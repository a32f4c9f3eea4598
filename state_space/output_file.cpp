#include "state_space/output_file.h"

#include "state_space/lts_file_error.h"

#include <fmt/core.h>

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Calder::StateSpace {

namespace {

/// As many as the system follows itself.
constexpr int most_links = 40;
constexpr ::mode_t permission_bits = 0777;

/// The path without links at its end; empty when there are too many of them.
std::filesystem::path behind_links(std::filesystem::path path) {
    for (int links = 0; links <= most_links; ++links) {
        std::error_code error;
        std::filesystem::path const next = std::filesystem::read_symlink(path, error);
        if (error) {
            return path; // no link, or nothing there
        }
        path = path.parent_path() / next;
    }
    return {};
}

/// Apart for all writers: the number for those of this process, the process for the others.
/// Where processes can share a number (network file systems), opening exclusively tells.
std::filesystem::path temporary_beside(std::filesystem::path const& target) {
    static std::atomic<unsigned> count = 0;
    return target.parent_path() / fmt::format(".calder-{}-{}.tmp", getpid(), ++count);
}

} // namespace

OutputFile::OutputFile(std::filesystem::path const& path)
    : m_path(path), m_target(behind_links(path)) {
    if (m_target.empty()) {
        fail(path.empty() ? ENOENT : ELOOP);
    }
    struct stat existing {};
    bool const exists = stat(m_target.c_str(), &existing) == 0;
    if (exists && S_ISDIR(existing.st_mode)) {
        fail(EISDIR);
    }
    if (exists && !S_ISREG(existing.st_mode)) {
        throw LtsFileError(fmt::format("cannot write {}: not a regular file", m_path.native()));
    }
    if (exists && access(m_target.c_str(), W_OK) != 0) {
        fail(errno);
    }
    create_temporary();
    if (exists) {
        // Where there are no such permissions this fails, and nothing is lost.
        fchmod(m_descriptor, existing.st_mode & permission_bits);
    }
}

OutputFile::~OutputFile() {
    if (m_descriptor >= 0) {
        close(m_descriptor);
    }
    if (!m_temporary.empty()) {
        unlink(m_temporary.c_str());
    }
}

void OutputFile::write(std::string_view text) {
    while (!text.empty()) {
        ssize_t const written = ::write(m_descriptor, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            fail(errno);
        }
    }
}

void OutputFile::commit() {
    // Some file systems tell of a full disk only here. EINVAL: one that has nothing to do.
    if (fsync(m_descriptor) != 0 && errno != EINVAL) {
        fail(errno);
    }
    if (close(std::exchange(m_descriptor, -1)) != 0 && errno != EINTR) {
        fail(errno);
    }
    if (std::rename(m_temporary.c_str(), m_target.c_str()) != 0) {
        fail(errno);
    }
    m_temporary.clear();
}

void OutputFile::create_temporary() {
    std::filesystem::path name;
    do {
        name = temporary_beside(m_target);
        m_descriptor = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    } while (m_descriptor < 0 && (errno == EEXIST || errno == EINTR));
    if (m_descriptor < 0) {
        fail(errno);
    }
    m_temporary = std::move(name);
}

void OutputFile::fail(int error) const {
    throw LtsFileError(fmt::format("cannot write {}: {}", m_path.native(),
                                   std::generic_category().message(error)));
}

} // namespace Calder::StateSpace
