// The GenApi engine: building the node map of the largest corpus description up to the first
// feature read, and reading and writing an integer feature with and without its cache. The
// baseline is the port access alone, which every uncached read pays as well.
#include <GenICam.h>

#include <benchmark/benchmark.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

using namespace GenApi;

namespace {

class MemoryPort : public IPort {
public:
    EAccessMode GetAccessMode() const override { return RW; }
    void Read(void* buffer, int64_t address, int64_t length) override {
        std::memcpy(buffer, m_bytes + (address % 64), static_cast<size_t>(length));
    }
    void Write(const void* buffer, int64_t address, int64_t length) override {
        std::memcpy(m_bytes + (address % 64), buffer, static_cast<size_t>(length));
    }

private:
    uint8_t m_bytes[128] = {};
};

std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void BM_BuildLargestCorpusMap(benchmark::State& state) {
    const std::string path =
        std::string(ORVAN_GENICAM_XML_DIR) + "/basler_a2a2600-20gmbas_ace2_gige.xml";
    const std::string xml = ReadFile(path);
    if (xml.empty()) {
        state.SkipWithError(("cannot read " + path).c_str());
        return;
    }
    MemoryPort port;
    for (auto _ : state) {
        CNodeMapFactory factory(ContentType_Auto, xml.data(), xml.size());
        INodeMap* map = factory.CreateNodeMap();
        map->Connect(&port, "Device");
        CIntegerPtr width = map->GetNode("Width");
        benchmark::DoNotOptimize(width->GetValue());
        dynamic_cast<IDestroy*>(map)->Destroy();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * xml.size()));
}
BENCHMARK(BM_BuildLargestCorpusMap)->Unit(benchmark::kMillisecond);

// One integer register with the given caching mode behind an Integer with limits.
struct SmallMap {
    explicit SmallMap(const char* caching) {
        std::string xml = std::string(R"(<?xml version="1.0"?><RegisterDescription>
            <Port Name="Device"/>
            <IntReg Name="Reg"><Address>8</Address><Length>4</Length><AccessMode>RW</AccessMode>
              <pPort>Device</pPort><Cachable>)") +
                          caching + R"(</Cachable></IntReg>
            <Integer Name="Value"><pValue>Reg</pValue><Min>0</Min><Max>1000000</Max></Integer>
            </RegisterDescription>)";
        ref._LoadXMLFromString(xml.c_str());
        ref._Connect(&port, "Device");
        value = ref._GetNode("Value");
    }
    MemoryPort port;
    CNodeMapRef ref;
    CIntegerPtr value;
};

void BM_PortReadBaseline(benchmark::State& state) {
    MemoryPort port;
    uint32_t raw = 0;
    for (auto _ : state) {
        port.Read(&raw, 8, 4);
        benchmark::DoNotOptimize(raw);
    }
}
BENCHMARK(BM_PortReadBaseline);

void BM_ReadInteger(benchmark::State& state, const char* caching) {
    SmallMap map(caching);
    for (auto _ : state)
        benchmark::DoNotOptimize(map.value->GetValue());
}
BENCHMARK_CAPTURE(BM_ReadInteger, Cached, "WriteThrough");
BENCHMARK_CAPTURE(BM_ReadInteger, Uncached, "NoCache");

void BM_WriteInteger(benchmark::State& state, const char* caching) {
    SmallMap map(caching);
    int64_t next = 0;
    for (auto _ : state)
        map.value->SetValue(next++ % 1000);
}
BENCHMARK_CAPTURE(BM_WriteInteger, Cached, "WriteThrough");
BENCHMARK_CAPTURE(BM_WriteInteger, Uncached, "NoCache");

} // namespace
