#include <velmocore/platform/Resources.h>

#include <cstdlib>
#include <filesystem>

namespace velmo {

std::string velmoResourcesDirectory() {
    const char* chosen = std::getenv("VELMO_RESOURCES");
    if (chosen && *chosen) return chosen;
    std::error_code ignored;
    if (std::filesystem::is_directory(VELMO_INSTALLED_RESOURCES, ignored))
        return VELMO_INSTALLED_RESOURCES;
    return VELMO_SOURCE_RESOURCES;
}

}  // namespace velmo
