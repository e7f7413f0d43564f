// What the logger tests share: a scratch working directory (the logger reads its configuration
// from it and writes its files to it), configurations, the files written, child processes.
#ifndef ORVAN_TESTS_LOGTESTSUPPORT_H
#define ORVAN_TESTS_LOGTESTSUPPORT_H

#include "TestPorts.h"

#include <nlohmann/json.hpp>

#include <spawn.h>
#include <sys/wait.h>

#include <cctype>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

extern char** environ;

namespace OrvanTest {

namespace fs = std::filesystem;

class WorkingDirectory {
public:
    WorkingDirectory() : m_previous(fs::current_path()) {
        std::string pattern = (fs::temp_directory_path() / "orvan-log-XXXXXX").string();
        m_path = mkdtemp(pattern.data());
        fs::current_path(m_path);
    }
    ~WorkingDirectory() {
        fs::current_path(m_previous);
        fs::remove_all(m_path);
    }

private:
    fs::path m_previous, m_path;
};

inline nlohmann::json Configuration(int level = 400, bool sinks = true) {
    return {
        {"ports", {{"orvan_in", TestPort(1)}, {"orvan_out", TestPort(0)}, {"ez_in", TestPort(2)}}},
        {"levels", {{"orvan", level}}},
        {"logging", {{"console", sinks}, {"json", sinks}, {"file", sinks}}}};
}

inline void WriteFile(const fs::path& path, const std::string& text) {
    std::ofstream(path) << text;
}

// Indented, so that the logger has lines to join.
inline void WriteConfiguration(const nlohmann::json& config, const fs::path& dir = ".") {
    WriteFile(dir / "morlu_log.conf", config.dump(4));
}

inline std::string ReadFile(const fs::path& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

inline std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

// The rest of a console or text-file line after its clock "[ HH:MM:SS.mmm ]"; "" if it does not
// start with one.
inline std::string AfterClock(const std::string& line) {
    const std::string shape = "[ 00:00:00.000 ]";
    for (size_t i = 0; i < shape.size(); ++i) {
        const bool digit = i < line.size() && std::isdigit(static_cast<unsigned char>(line[i]));
        if (i >= line.size() || (shape[i] == '0' ? !digit : line[i] != shape[i])) {
            return "";
        }
    }
    return line.substr(shape.size());
}

inline std::set<std::string> FileNames() {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(".")) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

// The name of the log file with that suffix, "orvan_" + 14 digits + suffix; "" if none.
inline std::string LogFile(const std::string& suffix) {
    for (const std::string& name : FileNames()) {
        if (name.size() == 20 + suffix.size() && name.rfind("orvan_", 0) == 0 &&
            name.compare(20, std::string::npos, suffix) == 0) {
            return name;
        }
    }
    return "";
}

struct Child {
    pid_t pid = -1;
    int output = -1; // the read end of its standard output, if captured
};

inline Child Spawn(std::vector<std::string> args, bool captureOutput) {
    std::vector<char*> argv;
    for (std::string& arg : args) {
        argv.push_back(arg.data());
    }
    argv.push_back(nullptr);
    Child child;
    int fds[2] = {-1, -1};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (captureOutput && pipe(fds) == 0) {
        posix_spawn_file_actions_adddup2(&actions, fds[1], STDOUT_FILENO);
        posix_spawn_file_actions_addclose(&actions, fds[0]);
        child.output = fds[0];
    }
    posix_spawn(&child.pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (fds[1] >= 0) {
        close(fds[1]);
    }
    return child;
}

// Closes the output only after the child ended, so that its last line cannot kill it with
// SIGPIPE. -1 if it did not exit normally.
inline int WaitExit(const Child& child) {
    int status = 0;
    const bool waited = waitpid(child.pid, &status, 0) == child.pid;
    if (child.output >= 0) {
        close(child.output);
    }
    return waited && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace OrvanTest

#endif
