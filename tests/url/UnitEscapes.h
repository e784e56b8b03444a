// Fields of the tables in tests/data: tabs between, and \uXXXX for what is no visible ASCII.
#pragma once

#include <string>
#include <vector>

#include "TestSupport.h"

namespace velmo::test {

inline std::vector<String> unescapedFieldsOf(const std::string& line) {
    std::vector<String> fields;
    std::u16string field;
    for (std::size_t i = 0; i <= line.size(); ++i) {
        if (i == line.size() || line[i] == '\t') {
            fields.push_back(field);
            field.clear();
        } else if (line[i] == '\\') {
            field += static_cast<char16_t>(std::stoi(line.substr(i + 2, 4), nullptr, 16));
            i += 5;
        } else {
            field += static_cast<char16_t>(line[i]);
        }
    }
    return fields;
}

}  // namespace velmo::test
