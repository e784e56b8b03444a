#include <velmocore/platform/UserDefaults.h>

#include <atomic>

namespace velmo {
namespace {

std::atomic<UserDefaultsHook> currentHook = nullptr;

}  // namespace

void setUserDefaultsHook(UserDefaultsHook hook) noexcept { currentHook = hook; }

std::vector<String> userDefaultStrings(std::u16string_view key) {
    const UserDefaultsHook hook = currentHook;
    return hook ? hook(key) : std::vector<String>();
}

}  // namespace velmo
