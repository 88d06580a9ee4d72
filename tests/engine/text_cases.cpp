#include "tests/engine/text_cases.h"

#include <algorithm>
#include <bit>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "tests/support/fatal_catcher.h"

void PrintTo(const TextCase& c, std::ostream* out) { *out << c.file << ":" << c.line << ": " << c.what; }

std::vector<std::string> words(const std::string& text) {
    std::istringstream in(text);
    return {std::istream_iterator<std::string>(in), {}};
}

std::vector<TextCase> readTextCases(const std::string& relative) {
    std::ifstream file(testDataPath(relative));
    std::vector<TextCase> cases;
    std::map<std::string, std::string> macros;
    std::string* into = nullptr;  // a define's lines, a case's input or its expected output
    int number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        std::istringstream in(line);
        std::string word, name, rest;
        in >> word;
        std::getline(in >> std::ws, rest);
        const size_t arrow = line.find(" -> ");
        if (line.empty()) {
            into = nullptr;
        } else if (line[0] == '#') {
        } else if (word == "define") {
            std::istringstream definition(rest);
            definition >> name;
            std::getline(definition >> std::ws, macros[name]);
            into = macros[name].empty() ? &macros[name] : nullptr;
        } else if (word == "==") {
            cases.push_back({relative, number, rest, "", "", {}, macros});
            into = &cases.back().input;
        } else if (into == nullptr && arrow != std::string::npos) {
            cases.push_back({relative, number, line, line.substr(0, arrow), line.substr(arrow + 4), {}, macros});
        } else if (into == nullptr) {
            throw std::runtime_error(relative + ":" + std::to_string(number) + ": outside a case");
        } else if (!cases.empty() && into == &cases.back().input && (word == "--" || word == "only")) {
            if (word == "--") into = &cases.back().expected;
            else cases.back().only = words(rest);
        } else {
            *into += line + "\n";
        }
    }
    if (cases.empty()) throw std::runtime_error(relative + ": no cases");
    return cases;
}

std::string comparedLines(const TextCase& c, const std::string& output) {
    std::istringstream lines(output);
    std::string kept;
    for (std::string line; std::getline(lines, line);) {
        const auto holds = [&line](const std::string& p) {
            if (p[0] == '^') return line.starts_with(p.substr(1));
            if (p.back() == '$') return line.ends_with(p.substr(0, p.size() - 1));
            return line.find(p) != std::string::npos;
        };
        kept += c.only.empty() || std::ranges::any_of(c.only, holds) ? line + "\n" : "";
    }
    return kept;
}

std::vector<uint8_t> textBytes(const std::string& text, const std::map<std::string, std::string>& macros) {
    std::vector<uint8_t> out;
    std::vector<size_t> open;  // where each unclosed chunk's header starts
    const auto put = [&out](uint64_t value, int bytes) {
        for (int i = 0; i < bytes; ++i) out.push_back(static_cast<uint8_t>(value >> (8 * i)));
    };
    std::istringstream in(text);
    for (std::string token; in >> token;) {
        if (macros.contains(token)) {
            const std::vector<uint8_t> inner = textBytes(macros.at(token), macros);
            out.insert(out.end(), inner.begin(), inner.end());
        } else if (token.size() == 5 && token[4] == '{') {
            open.push_back(out.size());
            put(std::stoul(token.substr(0, 4), nullptr, 16), 2);
            put(0, 4);
        } else if (token == "}") {
            const uint64_t length = out.size() - open.back();
            for (int i = 0; i < 4; ++i) out[open.back() + 2 + i] = static_cast<uint8_t>(length >> (8 * i));
            open.pop_back();
        } else if (token[0] == '"' || token[0] == '\'') {
            while ((token.size() < 2 || token.back() != token[0]) && in.peek() != EOF) {
                token += static_cast<char>(in.get());  // a name with spaces
            }
            out.insert(out.end(), token.begin() + 1, token.end() - 1);
            if (token[0] == '"') out.push_back(0);
        } else if (token[0] == 'x') {
            const size_t star = token.find('*');
            out.insert(out.end(), star == std::string::npos ? 1 : std::stoul(token.substr(star + 1)),
                       static_cast<uint8_t>(std::stoul(token.substr(1, 2), nullptr, 16)));
        } else if (token[0] == 'w' || token[0] == 'd' || token[0] == 'f') {
            std::istringstream values(token.substr(1));
            for (std::string value; std::getline(values, value, ',');) {
                if (token[0] == 'f') put(std::bit_cast<uint32_t>(std::stof(value)), 4);
                else put(std::stoul(value, nullptr, 0), token[0] == 'w' ? 2 : 4);
            }
        } else {
            throw std::invalid_argument("no such token: " + token);
        }
    }
    if (!open.empty()) throw std::invalid_argument("a chunk left open in: " + text);
    return out;
}
