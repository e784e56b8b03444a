// The completions in the shells themselves: what they offer behind half a command line.
#include "ToolFixture.h"

namespace velmo {
namespace {

class CompletionsTool : public Tool {
protected:
    void SetUp() override {
        Tool::SetUp();
        ASSERT_EQ(shell("for i in bash zsh fish; do $V completions $i > velmo.$i || exit; done; mkdir pages").code, 0);
    }

    /// What each shell offers behind words, one a line. The functions of zsh that describe what may
    /// stand there print it here.
    std::string offered(const std::string& name, const std::string& words) const {
        if (name == "bash")
            return shell("bash -c 'compopt() { :; }; source ./velmo.bash; COMP_WORDS=(" + words +
                         "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _velmo; printf \"%s\\n\" \"${COMPREPLY[@]}\"'")
                .out;
        if (name == "fish") return shell("fish -c 'source velmo.fish; complete -C \"" + lineOf(words) + "\"'").out;
        return shell("zsh -f -c 'words=(" + words +
                     "); CURRENT=$#words; _describe() { print -l $names }; _arguments() { print -l -- \"$@\" }; "
                     "source ./velmo.zsh'")
            .out;
    }

    /// A last word that is empty stands for a space at the end.
    static std::string lineOf(std::string words) {
        if (words.ends_with("\"\"")) words.resize(words.size() - 2);
        return words;
    }
};

TEST_F(CompletionsTool, OfferWhatMayFollow) {
    struct Case {
        const char* words;
        const char* offered;
        const char* not_offered;
    };
    constexpr Case Cases[] = {
        {"velmo ga", "gather", "--json"},          {"velmo url re", "resolve", "gather"},
        {"velmo help url k", "key", "gather"},     {"velmo gather --fol", "--follow", "--md5"},
        {"velmo digest --m", "--md5", "--follow"}, {"velmo match --comparison \"\"", "diacritics", "--md5"},
        {"velmo gather pa", "pages", "--md5"},     {"velmo store li", "list", "salvage x"},
        {"velmo help que", "queries", "--json"},   {"velmo que", "query", "queries"},
    };
    std::size_t count = 0;
    for (const char* name : {"bash", "zsh", "fish"})
        for (const Case& each : Cases) {
            // zsh is told that files stand there, and finds them itself.
            const std::string wanted =
                name == std::string("zsh") && each.offered == std::string("pages") ? "_files" : each.offered;
            const std::string found = offered(name, each.words);
            EXPECT_NE(found.find(wanted), found.npos) << name << ": " << each.words << "\n" << found;
            EXPECT_EQ(found.find(each.not_offered), found.npos) << name << ": " << each.words;
            ++count;
        }
    EXPECT_EQ(count, 30u);
}

}  // namespace
}  // namespace velmo
