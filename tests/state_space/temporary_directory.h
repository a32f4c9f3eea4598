#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace Calder::StateSpace::Testing {

/// A new empty directory for each test, which goes with it.
class TemporaryDirectory : public testing::Test {
  protected:
    TemporaryDirectory() {
        std::string name = (std::filesystem::temp_directory_path() / "calder-XXXXXX").native();
        m_path = mkdtemp(name.data());
    }
    ~TemporaryDirectory() override { std::filesystem::remove_all(m_path); }

    std::filesystem::path path(std::string const& name) const { return m_path / name; }

    static std::string contents(std::filesystem::path const& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    /// The names in the directory, sorted.
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (auto const& entry : std::filesystem::directory_iterator(m_path)) {
            found.push_back(entry.path().filename());
        }
        std::sort(found.begin(), found.end());
        return found;
    }

  private:
    std::filesystem::path m_path;
};

} // namespace Calder::StateSpace::Testing
