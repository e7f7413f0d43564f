// genapi-dump: loads a camera description, connects it to a memory register space and prints
// one line per node, so that the engine can be compared line by line with expectations.
#include "MemoryPort.h"
#include "NodeDump.h"

#include <GenApi/GenApi.h>

#include <algorithm>
#include <cstring>
#include <iostream>
#include <memory>

using namespace GenApi;

namespace {

int Usage() {
    std::cerr << "usage: genapi-dump [--fill pattern|zero] <description.xml|description.zip>\n";
    return 2;
}

// Helper nodes an engine makes for itself are not part of a description's features.
bool IsListed(const std::string& name) {
    auto endsWith = [&](const char* suffix) {
        size_t length = std::strlen(suffix);
        return name.size() >= length && name.compare(name.size() - length, length, suffix) == 0;
    };
    return !name.empty() && name[0] != '_' && !endsWith("_ConvertFrom") && !endsWith("_ConvertTo");
}

struct MapDestroyer {
    void operator()(INodeMap* map) const { dynamic_cast<IDestroy*>(map)->Destroy(); }
};

} // namespace

int main(int argc, char** argv) {
    MemoryPort::Fill fill = MemoryPort::Fill::Pattern;
    const char* path = nullptr;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--fill") == 0 && i + 1 < argc) {
            std::string value = argv[++i];
            if (value == "zero")
                fill = MemoryPort::Fill::Zero;
            else if (value != "pattern")
                return Usage();
        } else if (!path) {
            path = argv[i];
        } else {
            return Usage();
        }
    }
    if (!path)
        return Usage();

    std::unique_ptr<INodeMap, MapDestroyer> map;
    try {
        CNodeMapFactory factory(ContentType_Auto, gcstring(path));
        map.reset(factory.CreateNodeMap("Device"));
    } catch (const GenICam::GenericException& e) {
        std::cout << "LOAD_FAILED\t" << ExceptionClassName(e) << '\t' << e.GetDescription() << '\n';
        return 1;
    }

    MemoryPort port(fill);
    NodeList_t nodes;
    map->GetNodes(nodes);
    std::vector<INode*> listed;
    for (INode* node : nodes) {
        if (node->GetPrincipalInterfaceType() == intfIPort)
            map->Connect(&port, node->GetName());
        if (IsListed(node->GetName().str()))
            listed.push_back(node);
    }
    std::sort(listed.begin(), listed.end(), [](INode* a, INode* b) {
        return std::strcmp(a->GetName().c_str(), b->GetName().c_str()) < 0;
    });

    std::cout << "# genapi-dump 1\n";
    for (INode* node : listed)
        std::cout << DumpNode(*node) << '\n';
    return 0;
}
