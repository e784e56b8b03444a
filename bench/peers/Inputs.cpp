#include "peers/Inputs.h"

#include <algorithm>
#include <random>

#include <velmocore/markup/Links.h>
#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/text/Lines.h>
#include <velmocore/url/RelativeURLs.h>

namespace velmo::bench {
namespace {

Text textOf(const String& units) { return {units, units.utf8()}; }

/// The lines of the text with most units of [first, last], many times over in random order: a branch
/// predictor that has learnt the text by heart says nothing of one that comes from the network.
std::vector<std::string> textRichestIn(char16_t first, char16_t last) {
    constexpr std::size_t Size = 65536;
    const auto members = [=](const String& text) {
        return std::count_if(text.view().begin(), text.view().end(),
                             [=](char16_t unit) { return unit >= first && unit <= last; });
    };
    const auto& texts = corpus().texts;
    const auto richest = std::max_element(
        texts.begin(), texts.end(),
        [&](const String& one, const String& other) { return members(one) < members(other); });
    const std::vector<String> lines = velmo::lines(*richest);
    std::mt19937 random(1);
    std::string text;
    while (text.size() < Size) text += lines[random() % lines.size()].utf8();
    return {text};
}

}  // namespace

const std::vector<std::string>& pagesInUtf8() {
    static const std::vector<std::string> made = [] {
        std::vector<std::string> pages;
        for (std::size_t i = 0; i < corpus().pages.size(); ++i)
            if (corpus().pages[i] == corpus().utf8[i]) pages.push_back(corpus().pages[i]);
        return pages;
    }();
    return made;
}

const std::vector<std::string>& chineseText() {
    static const std::vector<std::string> made = textRichestIn(0x4E00, 0x9FFF);
    return made;
}

const std::vector<std::string>& russianText() {
    static const std::vector<std::string> made = textRichestIn(0x0400, 0x04FF);
    return made;
}

const std::vector<Text>& linksOfPages() {
    static const std::vector<Text> made = [] {
        std::vector<Text> texts;
        for (const std::string& page : corpus().pages)
            for (const String& link : htmlLinks(stringWithMarkupData(Bytes(page))).links)
                texts.push_back(textOf(link));
        return texts;
    }();
    return made;
}

const std::vector<Text>& urlsOfLinks() {
    static const std::vector<Text> made = [] {
        std::vector<Text> texts;
        const URL page = URL::URLWithString(String::fromUTF8(PageURL));
        for (const Text& link : linksOfPages())
            if (const URL url = URLRelativeTo(page, link.units); !url.isAbsent())
                texts.push_back(textOf(url.absoluteString()));
        return texts;
    }();
    return made;
}

std::vector<const Text*> shuffled(const std::vector<Text>& texts) {
    constexpr int Rounds = 32;
    std::vector<const Text*> order;
    for (int round = 0; round < Rounds; ++round)
        for (const Text& text : texts) order.push_back(&text);
    std::shuffle(order.begin(), order.end(), std::mt19937(1));
    return order;
}

}  // namespace velmo::bench
