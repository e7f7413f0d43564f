// Switches the SDK's logger on and writes records of your own through it.
//
// The logger reads "morlu_log.conf" from the working directory once, when OpenSystem builds it;
// without that file it stays silent. The file is JSON: three local UDP ports through which
// records travel (so that several processes can share one log), the level up to which records
// are kept (100 fatal, 200 error, 300 warning, 400 info, 500 debug, 600 verbose), and the sinks:
// the console, a text file and a JSON file named "orvan_<local time>.log" and ".log.json".
//
// Without such a file this example writes one, with three ports from the one given:
//   example_logging [first port]   (default 50610)
#include <Orvan/OrvanApi.h>

#include <cstdlib>
#include <fstream>
#include <iostream>

namespace {

void WriteConfiguration(int port) {
    std::ofstream("morlu_log.conf")
        << "{\n"
        << "  \"ports\": {\"orvan_out\": " << port << ", \"orvan_in\": " << port + 1
        << ", \"ez_in\": " << port + 2 << "},\n"
        << "  \"levels\": {\"orvan\": 400},\n"
        << "  \"logging\": {\"console\": true, \"file\": true, "
           "\"json\": false}\n"
        << "}\n";
}

} // namespace

int main(int argc, char** argv) {
    const int port = argc > 1 ? std::atoi(argv[1]) : 50610;
    Orvan::ISystem* system = nullptr;
    Orvan::IDevice* device = nullptr;
    try {
        // A configuration already there is the user's own: keep it.
        if (std::ifstream("morlu_log.conf"))
            std::cout << "Using the morlu_log.conf found in the working directory\n";
        else
            WriteConfiguration(port);
        system = Orvan::OpenSystem();

        // Records at or below the configured level (400, info) are kept...
        Orvan::ALogger::Info("Hello from the logging example");
        Orvan::ALogger::Warn("example", "a warning tagged with a user id");
        // ...more detailed ones are dropped.
        Orvan::ALogger::Debug("not shown at level 400");

        // Records about a camera carry its serial number.
        system->UpdateDevices(1000);
        const std::vector<Orvan::DeviceInfo> devices = system->GetDevices();
        if (!devices.empty()) {
            device = system->CreateDevice(devices.front());
            Orvan::ALogger::Info(device, "camera opened");
            system->DestroyDevice(device);
            device = nullptr;
        }

        // Closing the system writes out every record still on its way.
        Orvan::CloseSystem(system);
        std::cout << "Logged to the console and to orvan_*.log in the working directory\n";
        return 0;
    } catch (const GenICam::GenericException& e) {
        std::cerr << "error: " << e.what() << '\n';
        if (device != nullptr)
            system->DestroyDevice(device);
        if (system != nullptr)
            Orvan::CloseSystem(system);
        return 1;
    }
}
