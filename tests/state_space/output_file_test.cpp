#include "state_space/lts_file_error.h"
#include "state_space/output_file.h"
#include "tests/state_space/temporary_directory.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

int error_of_fsync = 0; // 0 for none

} // namespace

/// In the place of the system's, since no file system fails at will.
extern "C" int fsync(int) {
    errno = error_of_fsync;
    return error_of_fsync == 0 ? 0 : -1;
}

namespace Calder::StateSpace {
namespace {

using Names = std::vector<std::string>;

void replace(std::filesystem::path const& path, std::string_view text) {
    OutputFile file(path);
    file.write(text);
    file.commit();
}

std::string error_of_replacing(std::filesystem::path const& path, std::string_view text = "x") {
    try {
        replace(path, text);
    } catch (LtsFileError const& failure) {
        return failure.what();
    }
    return "no error";
}

::mode_t mode_of(std::filesystem::path const& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
}

class OutputFileTest : public Testing::TemporaryDirectory {};

TEST_F(OutputFileTest, appears_when_it_is_committed) {
    std::filesystem::path const target = path("x");
    replace(target, "old");
    {
        OutputFile file(target);
        file.write("ne");
        file.write("w");
        EXPECT_EQ(contents(target), "old");
        file.commit();
        EXPECT_EQ(contents(target), "new");
    }
    {
        OutputFile file(target);
        file.write("given up");
        EXPECT_EQ(names().size(), 2U);
    }
    EXPECT_EQ(contents(target), "new");
    EXPECT_EQ(names(), Names{"x"});
}

TEST_F(OutputFileTest, errors_name_the_file_and_the_reason) {
    std::filesystem::create_directory(path("directory"));
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    std::filesystem::create_symlink("circle", path("circle"));
    replace(path("file"), "old");
    Names const before = names();
    struct {
        char const* name;
        char const* reason;
    } const rows[] = {
        {"missing/x", "No such file or directory"},
        {"file/x", "Not a directory"},
        {"directory", "Is a directory"},
        {"pipe", "not a regular file"},
        {"circle", "Too many levels of symbolic links"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(error_of_replacing(path(row.name)),
                  "cannot write " + path(row.name).native() + ": " + row.reason);
    }
    EXPECT_EQ(error_of_replacing(""), "cannot write : No such file or directory");
    EXPECT_EQ(names(), before);
}

TEST_F(OutputFileTest, a_full_disk_leaves_the_old_file) {
    replace(path("x"), "old");
    // A limit on the size of files fails a write in the middle, as a full disk does.
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    rlimit small = before;
    small.rlim_cur = 1000;
    auto const old_handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    std::string const error = error_of_replacing(path("x"), std::string(5000, 'x'));
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, old_handler);

    EXPECT_EQ(error, "cannot write " + path("x").native() + ": File too large");
    EXPECT_EQ(contents(path("x")), "old");
    EXPECT_EQ(names(), Names{"x"});
}

TEST_F(OutputFileTest, what_the_system_tells_only_when_it_synchronises_counts) {
    replace(path("x"), "old");
    error_of_fsync = EIO;
    EXPECT_EQ(error_of_replacing(path("x")),
              "cannot write " + path("x").native() + ": Input/output error");
    EXPECT_EQ(contents(path("x")), "old");
    error_of_fsync = EINVAL; // there is nothing to synchronise
    EXPECT_EQ(error_of_replacing(path("x"), "new"), "no error");
    EXPECT_EQ(contents(path("x")), "new");
    error_of_fsync = 0;
    EXPECT_EQ(names(), Names{"x"});
}

TEST_F(OutputFileTest, a_target_that_turns_into_a_directory_is_an_error) {
    OutputFile file(path("x"));
    std::filesystem::create_directory(path("x"));
    EXPECT_THROW(file.commit(), LtsFileError);
    EXPECT_TRUE(std::filesystem::is_directory(path("x")));
}

TEST_F(OutputFileTest, permissions_are_those_of_the_file_before_or_of_any_new_one) {
    ::mode_t const old_mask = umask(027);
    replace(path("new"), "x");
    EXPECT_EQ(mode_of(path("new")), 0640U);
    ASSERT_EQ(chmod(path("new").c_str(), 0604), 0);
    replace(path("new"), "y");
    EXPECT_EQ(mode_of(path("new")), 0604U);
    umask(old_mask);
}

TEST_F(OutputFileTest, a_file_that_may_not_be_written_is_not_replaced) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "everything may be written by root";
    }
    replace(path("x"), "old");
    ASSERT_EQ(chmod(path("x").c_str(), 0444), 0);
    EXPECT_EQ(error_of_replacing(path("x")),
              "cannot write " + path("x").native() + ": Permission denied");
    EXPECT_EQ(contents(path("x")), "old");
}

TEST_F(OutputFileTest, links_are_followed) {
    std::filesystem::create_directory(path("directory"));
    std::filesystem::create_symlink("directory/link", path("link"));
    std::filesystem::create_symlink("file", path("directory/link"));
    for (char const* const text : {"first there is no file", "then there is one"}) {
        replace(path("link"), text);
        EXPECT_TRUE(std::filesystem::is_symlink(path("link")));
        EXPECT_TRUE(std::filesystem::is_symlink(path("directory/link")));
        EXPECT_EQ(contents(path("directory/file")), text);
    }
}

TEST_F(OutputFileTest, processes_do_not_get_into_each_others_way) {
    std::string const texts[] = {std::string(100'000, 'a'), std::string(50'000, 'b')};
    pid_t children[2];
    for (int child = 0; child < 2; ++child) {
        children[child] = fork();
        if (children[child] == 0) {
            for (int round = 0; round < 50; ++round) {
                if (error_of_replacing(path("x"), texts[child]) != "no error") {
                    _exit(1);
                }
            }
            _exit(0);
        }
    }
    for (pid_t const child : children) {
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    std::string const left = contents(path("x"));
    EXPECT_TRUE(left == texts[0] || left == texts[1]);
    EXPECT_EQ(names(), Names{"x"});
}

} // namespace
} // namespace Calder::StateSpace
