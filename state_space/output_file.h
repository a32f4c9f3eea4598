#pragma once

#include <filesystem>
#include <string_view>
#include <sys/types.h>

namespace Calder::StateSpace {

/// A file that is replaced as a whole or not at all. What is written goes to a temporary file of a
/// name of its own in the same directory; `commit` renames that.
///
/// A symbolic link is followed, and the file that it leads to is replaced. An existing file passes
/// its permissions on to the new one; otherwise they are those of any new file. A file that may not
/// be written, and whatever is no regular file, is refused. Every failure throws LtsFileError.
class OutputFile {
  public:
    explicit OutputFile(std::filesystem::path const& path);
    /// Without a commit, removes the temporary file.
    ~OutputFile();
    OutputFile(OutputFile const&) = delete;
    OutputFile& operator=(OutputFile const&) = delete;

    /// Not buffered.
    void write(std::string_view text);

    /// Nothing may be written after it.
    void commit();

  private:
    void create_temporary();
    [[noreturn]] void fail(int error) const;

    std::filesystem::path m_path;   // as the caller named it, for messages
    std::filesystem::path m_target; // behind all links
    std::filesystem::path m_temporary;
    int m_descriptor = -1;
};

} // namespace Calder::StateSpace
