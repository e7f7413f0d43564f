// Runs genapi-dump over one corpus description in both fills and compares its output line by
// line with the expectations stored beside the description. Lines listed in the known
// differences are allowed to differ. Exit status 0 when everything matches.
#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

namespace {

std::vector<std::string> SplitTabs(const std::string& line) {
    std::vector<std::string> fields;
    std::stringstream stream(line);
    std::string field;
    while (std::getline(stream, field, '\t'))
        fields.push_back(field);
    return fields;
}

std::vector<std::string> ReadLines(std::istream& in) {
    std::vector<std::string> lines;
    std::string line;
    while (std::getline(in, line))
        lines.push_back(line);
    return lines;
}

std::vector<std::string> RunDump(const std::string& tool, const std::string& fill,
                                 const std::string& description) {
    std::string command = "'" + tool + "' --fill " + fill + " '" + description + "'";
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe)
        return {};
    std::string output;
    char buffer[65536];
    size_t count;
    while ((count = fread(buffer, 1, sizeof buffer, pipe)) > 0)
        output.append(buffer, count);
    pclose(pipe);
    std::istringstream stream(output);
    return ReadLines(stream);
}

// An expected EXC:Unknown stands for any exception the engine may raise.
bool FieldMatches(const std::string& expected, const std::string& actual) {
    return expected == actual || (expected == "EXC:Unknown" && actual.rfind("EXC:", 0) == 0);
}

bool LineMatches(const std::string& expected, const std::string& actual) {
    std::vector<std::string> want = SplitTabs(expected);
    std::vector<std::string> have = SplitTabs(actual);
    if (want.size() != have.size())
        return false;
    for (size_t i = 0; i < want.size(); ++i)
        if (!FieldMatches(want[i], have[i]))
            return false;
    return true;
}

using Known = std::set<std::tuple<std::string, std::string, std::string>>;

Known ReadKnown(const std::string& path) {
    Known known;
    std::ifstream in(path);
    for (const std::string& line : ReadLines(in)) {
        std::vector<std::string> fields = SplitTabs(line);
        if (fields.size() >= 3 && fields[0] != "file")
            known.emplace(fields[0], fields[1], fields[2]);
    }
    return known;
}

// Returns the number of lines that differ without being known to.
int Compare(const std::string& tool, const std::string& description, const std::string& name,
            const std::string& fill, const Known& known) {
    std::ifstream expectedFile(description + "." + fill + ".tsv");
    std::vector<std::string> expected = ReadLines(expectedFile);
    std::vector<std::string> actual = RunDump(tool, fill, description);
    if (expected.empty() || actual.empty()) {
        std::cout << name << " " << fill << ": no expectation or no output\n";
        return 1;
    }
    if (expected[0].rfind("LOAD_FAILED", 0) == 0) {
        // The reference's wording is its own; the exception class must agree.
        std::vector<std::string> want = SplitTabs(expected[0]);
        std::vector<std::string> have = SplitTabs(actual[0]);
        bool same = have.size() >= 2 && have[0] == want[0] && have[1] == want[1];
        if (!same)
            std::cout << name << " " << fill << ": expected " << expected[0] << "\n  got "
                      << actual[0] << "\n";
        return same ? 0 : 1;
    }
    std::map<std::string, std::string> byName;
    for (size_t i = 1; i < actual.size(); ++i)
        byName.emplace(SplitTabs(actual[i])[0], actual[i]);
    int differences = 0;
    for (size_t i = 1; i < expected.size(); ++i) {
        std::string node = SplitTabs(expected[i])[0];
        auto found = byName.find(node);
        if (found != byName.end() && LineMatches(expected[i], found->second))
            continue;
        if (known.count({name, fill, node}))
            continue;
        ++differences;
        std::cout << name << " " << fill << "\n  expected " << expected[i] << "\n  got      "
                  << (found == byName.end() ? std::string("(missing)") : found->second) << "\n";
    }
    if (actual.size() != expected.size()) {
        ++differences;
        std::cout << name << " " << fill << ": " << actual.size() - 1 << " nodes listed, "
                  << expected.size() - 1 << " expected\n";
    }
    return differences;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: DumpConformance <genapi-dump> <corpus description> "
                     "<known-differences.tsv>\n";
        return 2;
    }
    std::string description = argv[2];
    std::string name = description.substr(description.find_last_of('/') + 1);
    Known known = ReadKnown(argv[3]);
    int differences = 0;
    for (const char* fill : {"pattern", "zero"})
        differences += Compare(argv[1], description, name, fill, known);
    std::cout << name << ": " << differences << " differing lines\n";
    return differences == 0 ? 0 : 1;
}
