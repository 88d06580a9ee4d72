// Test cases kept as text under tests/data, read by one reader for every
// program that keeps its cases there. A file's lines:
//   # ...                 a comment
//   define NAME WORDS     WORDS named NAME for every later case (textBytes expands them);
//   define NAME           without words: the lines that follow, up to a blank line
//   == WHAT               a case: its input lines follow, then
//   only WORD...          (at will) compare only the lines of its output holding a WORD:
//                         "^WORD" at their start, "WORD$" at their end, any other anywhere
//   --                    and the lines its output must be, up to a blank line
//   WORDS -> RESULT       outside a case: a case of one line, input WORDS, output RESULT
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

struct TextCase {
    std::string file;
    int line = 0;
    std::string what;
    std::string input, expected;  // lines, each ending in '\n' (a one-line case's without)
    std::vector<std::string> only;
    std::map<std::string, std::string> macros;  // the defines before it
};
void PrintTo(const TextCase& c, std::ostream* out);

// The cases of tests/data/RELATIVE; throws naming the file and line it cannot read.
std::vector<TextCase> readTextCases(const std::string& relative);

// The lines of `output` the case compares ("only"), each ending in '\n'.
std::string comparedLines(const TextCase& c, const std::string& output);

// The words of `text`.
std::vector<std::string> words(const std::string& text);

// For INSTANTIATE_TEST_SUITE_P: each case named by its line.
inline std::string caseName(const ::testing::TestParamInfo<TextCase>& info) {
    return "line" + std::to_string(info.param.line);
}

// Bytes of the whitespace-separated tokens of `text`:
//   4D4D{ ... }   a chunk of that id (hex): 16-bit id, 32-bit length counted from its parts
//   "text"        the characters and a NUL; 'text' without the NUL
//   w1,2  d3  f1.5,-2   16-bit words, 32-bit words, floats (little-endian; 0x for hex)
//   xEE*8         the byte 0xEE eight times (xEE: once)
//   NAME          the tokens `macros` gives NAME
std::vector<uint8_t> textBytes(const std::string& text, const std::map<std::string, std::string>& macros = {});
