#include "script/characters.h"

#include <algorithm>
#include <array>

namespace Calder::Script {

namespace {

constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";

unsigned byte_at(std::string_view text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

/// Which sequences begin with a byte up to `last_lead` (and above the row before): how long they
/// are, and what their second byte may be. Every further byte is 80 to BF.
struct SequenceForm {
    unsigned last_lead;
    std::size_t length;
    unsigned least_second;
    unsigned last_second;
};

constexpr std::array<SequenceForm, 10> forms{{
    {0x7F, 1, 0, 0},
    {0xC1, 0, 0, 0},
    {0xDF, 2, 0x80, 0xBF},
    {0xE0, 3, 0xA0, 0xBF},
    {0xEC, 3, 0x80, 0xBF},
    {0xED, 3, 0x80, 0x9F},
    {0xEF, 3, 0x80, 0xBF},
    {0xF0, 4, 0x90, 0xBF},
    {0xF3, 4, 0x80, 0xBF},
    {0xF4, 4, 0x80, 0x8F},
}};

} // namespace

std::size_t sequence_length(std::string_view text) {
    if (text.empty()) {
        return 0;
    }
    auto const form = std::find_if(forms.begin(), forms.end(), [&](SequenceForm const& candidate) {
        return byte_at(text, 0) <= candidate.last_lead;
    });
    if (form == forms.end() || text.size() < form->length) {
        return 0;
    }
    for (std::size_t index = 1; index < form->length; ++index) {
        unsigned const least = index == 1 ? form->least_second : 0x80;
        unsigned const last = index == 1 ? form->last_second : 0xBF;
        if (byte_at(text, index) < least || byte_at(text, index) > last) {
            return 0;
        }
    }
    return form->length;
}

bool is_printable(std::string_view sequence) {
    unsigned const lead = byte_at(sequence, 0);
    bool const is_high_control = lead == 0xC2 && byte_at(sequence, 1) < 0xA0;
    return lead >= 0x20 && lead != 0x7F && !is_high_control;
}

std::string character_name(std::string_view sequence) {
    if (is_printable(sequence)) {
        return "'" + std::string(sequence) + "'";
    }
    constexpr std::string_view digits = "0123456789ABCDEF";
    unsigned const code = byte_at(sequence, sequence.size() - 1); // below 100, as a control is
    return std::string("U+00") + digits[code / 16] + digits[code % 16];
}

std::size_t byte_order_mark_length(std::string_view text) {
    return text.starts_with(byte_order_mark) ? byte_order_mark.size() : 0;
}

} // namespace Calder::Script
