# cmake -DSOURCE_DIR=<web folder> -DOUTPUT=<file.cpp> -P EmbedWebFiles.cmake
# Writes the kWebAssets table of WebAssets.h: every .html, .css and .js file of the folder as
# bytes, served at "/<file name>".
file(GLOB files RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/*.html ${SOURCE_DIR}/*.css ${SOURCE_DIR}/*.js)
list(SORT files)
set(arrays "")
set(table "")
set(index 0)
foreach(name IN LISTS files)
    file(READ ${SOURCE_DIR}/${name} hex HEX)
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
    string(APPEND arrays "const unsigned char kFile${index}[] = {\n${bytes}};\n")
    string(APPEND table "    {\"/${name}\", kFile${index}, sizeof kFile${index}},\n")
    math(EXPR index "${index} + 1")
endforeach()
set(content "// Generated from tools/orvan/web/ by EmbedWebFiles.cmake at build time.
#include \"WebAssets.h\"

namespace Orvan {
namespace Cli {

namespace {
${arrays}} // namespace

const WebAsset kWebAssets[] = {
${table}};
const size_t kWebAssetCount = ${index};

} // namespace Cli
} // namespace Orvan
")
# Rewritten only when it changes, so that an unchanged page compiles nothing.
if(EXISTS ${OUTPUT})
    file(READ ${OUTPUT} previous)
endif()
if(NOT "${previous}" STREQUAL "${content}")
    file(WRITE ${OUTPUT} "${content}")
endif()
