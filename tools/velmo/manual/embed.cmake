# Makes a source of the texts of the manual, so that the tool has them wherever it is:
# cmake -DTO=SOURCE -P embed.cmake. Each is named by its path without the ending, as topics/json.
cmake_minimum_required(VERSION 3.25)
file(GLOB_RECURSE texts RELATIVE ${CMAKE_CURRENT_LIST_DIR} ${CMAKE_CURRENT_LIST_DIR}/*.txt)
list(SORT texts)
set(rows "")
foreach(text IN LISTS texts)
  file(READ ${CMAKE_CURRENT_LIST_DIR}/${text} content)
  string(REGEX REPLACE "\\.txt$" "" name ${text})
  string(APPEND rows "        {\"${name}\", R\"manual(${content})manual\"},\n")
endforeach()
file(WRITE ${TO} "// Made by embed.cmake of the texts beside it.
#include \"frame/Manual.h\"

namespace velmo::tool {

std::span<const ManualText> manualTexts() {
    static constexpr ManualText Texts[] = {
${rows}    };
    return Texts;
}

}  // namespace velmo::tool
")
