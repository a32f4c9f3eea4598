#include "tests/script/reading.h"

namespace Calder::Script {
namespace {

using Testing::ErrorRow;
using Testing::expect_errors;

TEST(EventErrors, of_declarations) {
    ErrorRow const rows[] = {
        {"channel a : {}", "1:13+1 a field without values has no events\n"},
        {"channel a : {0}.{5..3}.{}", "1:18+4 the range 5..3 is empty: it runs backwards\n"
                                      "1:24+1 a field without values has no events\n"},
        {"channel a : {x, y, x, 2, 1..3, 0..1}",
         "1:20+1 the value 'x' stands twice in this field\n"
         "1:26+4 the value '2' stands twice in this field\n"
         "1:32+4 the value '1' stands twice in this field\n"},
        {"channel a\n\nchannel b, a", "3:12+1 the event 'a' is already declared in line 1\n"},
        {"channel a : {0..3}.{x}\nchannel a : {7, 2, 1}.{y, x}",
         "2:9+1 the event 'a.2.x' is already declared in line 1\n"},
        {"channel a : {4294967295..4294967295}", ""},
        {"channel a : {4294967296, 0..99999999999999999999}",
         "1:14+10 the number '4294967296' is too large\n"
         "1:29+20 the number '99999999999999999999' is too large\n"},
        {"channel a : {00..01}", "1:14+2 the number '00' has a leading zero\n"
                                 "1:18+2 the number '01' has a leading zero\n"},
        {"channel tick, a", "1:9+4 'tick' is there from the start and is never declared\n"},
        {"channel tau : {0}", "1:9+3 'tau' may not be written: it is the silent event\n"},
        {"channel a : {tau}", "1:14+3 'tau' may not be written: it is the silent event\n"},
    };
    expect_errors(rows);
}

TEST(EventErrors, of_terms) {
    ErrorRow const rows[] = {
        {"P = b -> STOP", "1:5+1 the event 'b' is not declared\n"},
        {"channel think, drink P = thnik -> STOP",
         "1:26+5 the event 'thnik' is not declared; did you mean 'think'?\n"},
        {"channel up : {0..4}.{0..4} P = up.0 -> up -> up.0.5 -> up.0.1.1 -> up.x -> STOP",
         "1:32+4 the event 'up.0' is incomplete: fields are missing, as in 'up.0.0'\n"
         "1:40+2 the event 'up' is incomplete: fields are missing, as in 'up.0.0'\n"
         "1:46+6 the event 'up.0.5' is not declared; did you mean 'up.0.0'?\n"
         "1:56+8 the event 'up.0.1.1' is not declared; did you mean 'up.0.1'?\n"
         "1:68+4 the event 'up.x' is not declared\n"},
        {"P = up\n .0 -> STOP", "1:5+2 the event 'up.0' is not declared\n"},
        {"channel a P = {a, b, c, b} -> {} -> STOP", "1:19+1 the event 'b' is not declared\n"
                                                     "1:22+1 the event 'c' is not declared\n"
                                                     "1:25+1 the event 'b' is not declared\n"},
        {"channel send : {x, y} P = {|send, sned, send.x, send.z, send.x.x|} -> STOP",
         "1:35+4 no declared event begins with 'sned'; did you mean 'send'?\n"
         "1:49+6 no declared event begins with 'send.z'; did you mean 'send.x'?\n"
         "1:57+8 no declared event begins with 'send.x.x'; did you mean 'send.x'?\n"},
        {"P = tick -> STOP",
         "1:5+4 'tick' may stand only in a set of events and in 'tick <-> tick'\n"},
        {"P = tick.0 -> STOP", "1:5+6 the event 'tick.0' is not declared\n"},
        {"P = tau -> {tau} -> STOP", "1:5+3 'tau' may not be written: it is the silent event\n"
                                     "1:13+3 'tau' may not be written: it is the silent event\n"},
        {"channel a : {1} P = a.01 -> STOP", "1:23+2 the number '01' has a leading zero\n"},
    };
    expect_errors(rows);
}

TEST(EventErrors, do_not_cause_others) {
    ErrorRow const rows[] = {
        {"channel a : {3..1} P = a.3 -> {|a|} -> a -> STOP",
         "1:14+4 the range 3..1 is empty: it runs backwards\n"},
        {"channel a, a, b P = a -> b -> STOP", "1:12+1 the event 'a' is already declared in line "
                                               "1\n"},
        {"P = {| tick |} -> {tick} -> STOP", ""},
    };
    expect_errors(rows);
}

} // namespace
} // namespace Calder::Script
