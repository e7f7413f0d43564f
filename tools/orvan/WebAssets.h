// The viewer's page (HTML, CSS, JavaScript from tools/orvan/web/), compiled into the tool so
// that it runs without its source tree and without anything fetched at run time.
#ifndef ORVAN_TOOLS_ORVAN_WEBASSETS_H
#define ORVAN_TOOLS_ORVAN_WEBASSETS_H

#include <cstddef>

namespace Orvan {
namespace Cli {

struct WebAsset {
    const char* path; // "/index.html", "/viewer.js", ...
    const unsigned char* data;
    size_t size;
};

// Defined in the file that the build generates from the web folder.
extern const WebAsset kWebAssets[];
extern const size_t kWebAssetCount;

} // namespace Cli
} // namespace Orvan

#endif
