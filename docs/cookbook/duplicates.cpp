// Addresses that lead to one page, told by its key: sessions, trackers and other noise do not count.
//
//     duplicates < ADDRESSES
#include <velmocore/url/PageKey.h>
#include <velmocore/url/URLConstruction.h>

#include <iostream>
#include <map>
#include <string>
#include <vector>

using namespace velmo;

int main() {
    std::map<String, std::vector<std::string>> pages;
    for (std::string line; std::getline(std::cin, line);)
        if (const URL url = URLWithNormalizedStringURL(String::fromUTF8(line)); !url.isAbsent())
            pages[pageKey(url)].push_back(line);
    for (const auto& [key, addresses] : pages) {
        std::cout << key << '\n';
        for (const std::string& address : addresses) std::cout << "    " << address << '\n';
    }
}
