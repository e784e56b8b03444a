// Sources of what is one thing only.
#pragma once

#include <memory>
#include <utility>

#include <velmocore/gather/PageSource.h>

namespace velmo::detail {

/// One page, or one error.
class SingleSource final : public PageSource {
public:
    explicit SingleSource(SourcePage&& page) : page_(std::move(page)) {}
    State next(SourcePage& page) override {
        if (std::exchange(isGiven_, true)) return State::End;
        page = std::move(page_);
        return State::Page;
    }

private:
    SourcePage page_;
    bool isGiven_ = false;
};

inline std::unique_ptr<PageSource> failingSource(const String& name, Error error) {
    SourcePage page = {.name = name};
    page.error = std::move(error);
    return std::make_unique<SingleSource>(std::move(page));
}

}  // namespace velmo::detail
