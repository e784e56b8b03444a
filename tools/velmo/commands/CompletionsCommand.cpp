#include "frame/Completions.h"

#include <memory>

#include "Commands.h"

namespace velmo::tool {

Command makeCompletionsCommand(Session& session) {
    auto shell = std::make_shared<std::string>();
    const auto print = [&session, shell](Report& report) {
        constexpr std::string_view Shells[] = {"bash", "zsh", "fish"};
        constexpr decltype(&bashCompletion) Scripts[] = {bashCompletion, zshCompletion,
                                                         fishCompletion};
        const std::size_t index = indexOfName(*shell, Shells);
        report.printBytes(Scripts[index](completedCommands(allCommands(), session)));
    };
    return {.summary = "Print what lets a shell complete command lines: bash, zsh or fish",
            .examples = {"velmo completions fish"},
            .arguments = {required("SHELL", *shell, "bash, zsh or fish")},
            .run = print};
}

}  // namespace velmo::tool
