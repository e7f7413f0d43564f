// orvan: the command-line tool of the Orvan SDK. Every failure ends as one line on stderr and an
// exit code: 2 when the command line is wrong, 1 when the camera or the system refused.
#include "Commands.h"
#include "ToolError.h"

#include <Base/GCException.h>
#include <Orvan/System.h>

#include <exception>
#include <iostream>

namespace {

int Fail(const std::string& message, int code) {
    std::cerr << "orvan: error: " << message << '\n';
    return code;
}

} // namespace

int main(int argc, char** argv) {
    using namespace Orvan::Cli;
    CLI::App app("Lists Orvan cameras, reads and writes their features and streams images.",
                 "orvan");
    app.set_version_flag("--version", std::string(Orvan::GetVersion().c_str()));
    app.require_subcommand(1);
    int exitCode = 0;
    AddListCommand(app, exitCode);
    AddInfoCommand(app, exitCode);
    AddGetCommand(app, exitCode);
    AddSetCommand(app, exitCode);
    AddExecCommand(app, exitCode);
    AddStreamCommand(app, exitCode);
    AddSaveFeaturesCommand(app, exitCode);
    AddLoadFeaturesCommand(app, exitCode);
    AddXmlCommand(app, exitCode);
    AddLogCommand(app, exitCode);
    AddViewCommand(app, exitCode);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        if (e.get_exit_code() == 0) // --help, --version
            return app.exit(e);
        return Fail(std::string(e.what()) + " (see 'orvan --help')", kExitUsageError);
    } catch (const UsageError& e) {
        return Fail(e.what(), kExitUsageError);
    } catch (const ToolError& e) {
        return Fail(e.what(), kExitRuntimeError);
    } catch (const GenICam::GenericException& e) {
        return Fail(e.GetDescription(), kExitRuntimeError);
    } catch (const std::exception& e) {
        return Fail(e.what(), kExitRuntimeError);
    }
    return exitCode;
}
