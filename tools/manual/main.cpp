// Writes the manual page of the command and its completions.
//
//     calder_manual VERSION DATE MAN_PAGE BASH ZSH FISH    the last four are files

#include "tools/manual/manual.h"

#include <array>
#include <cstddef>
#include <fstream>
#include <iostream>

using namespace Calder::Tools;

int main(int count, char** words) {
    constexpr int wanted = 7;
    if (count != wanted) {
        std::cerr << "calder_manual: six words are wanted: VERSION DATE MAN_PAGE BASH ZSH FISH\n";
        return 1;
    }
    Manual const manual = make_manual();
    std::array const texts{man_page(manual, words[1], words[2]), bash_completion(manual),
                           zsh_completion(manual), fish_completion(manual)};
    for (std::size_t index = 0; index < texts.size(); ++index) {
        char const* const name = words[3 + index];
        std::ofstream file(name, std::ios::binary);
        file << texts[index] << std::flush;
        if (!file) {
            std::cerr << "calder_manual: cannot write " << name << "\n";
            return 1;
        }
    }
    return 0;
}
