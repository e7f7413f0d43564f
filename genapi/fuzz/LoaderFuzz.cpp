// The description loader: any bytes, plain or zipped, must either build a node map or fail with
// a GenICam exception. Each map built is connected to a register space and every node is read,
// so that what the loader accepted is also exercised.
#include <GenICam.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

// Every address reads as a byte derived from it; writes are dropped.
class PatternPort : public GenApi::IPort {
public:
    GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
    void Read(void* buffer, int64_t address, int64_t length) override {
        auto* bytes = static_cast<uint8_t*>(buffer);
        for (int64_t i = 0; i < length; ++i)
            bytes[i] = static_cast<uint8_t>((static_cast<uint64_t>(address) + i) * 151u + 17u);
    }
    void Write(const void*, int64_t, int64_t) override {}
};

void ReadEverything(GenApi::INodeMap& map) {
    using namespace GenApi;
    PatternPort port;
    NodeList_t nodes;
    map.GetNodes(nodes);
    for (INode* node : nodes)
        if (node->GetPrincipalInterfaceType() == intfIPort)
            map.Connect(&port, node->GetName());
    for (INode* node : nodes) {
        try {
            node->GetAccessMode();
            node->GetCachingMode();
            if (CValuePtr value = node)
                value->ToString();
        } catch (const GenICam::GenericException&) {
        }
        try {
            if (CIntegerPtr integer = node) {
                integer->GetMin();
                integer->GetMax();
            } else if (CFloatPtr real = node) {
                real->GetMin();
                real->GetMax();
            }
        } catch (const GenICam::GenericException&) {
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    try {
        GenApi::CNodeMapFactory factory(GenApi::ContentType_Auto, data, size);
        GenApi::INodeMap* map = factory.CreateNodeMap();
        ReadEverything(*map);
        dynamic_cast<GenApi::IDestroy*>(map)->Destroy();
    } catch (const GenICam::GenericException&) {
    }
    return 0;
}
