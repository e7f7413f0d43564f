// Lists the transport interfaces and every camera reachable through them.
//
// Discovery is explicit: UpdateDevices asks every interface for its cameras (in parallel, each
// with its own time-out) and GetDevices then returns what was found. Nothing needs opening to be
// listed; a DeviceInfo is later given to CreateDevice to open that camera.
#include <Orvan/OrvanApi.h>

#include <iostream>

int main() {
    Orvan::ISystem* system = nullptr;
    try {
        system = Orvan::OpenSystem();

        const std::vector<Orvan::InterfaceInfo> interfaces = system->GetInterfaces();
        std::cout << "Found " << interfaces.size() << " interface(s)\n";
        for (const Orvan::InterfaceInfo& interface : interfaces)
            std::cout << "  " << interface.Id() << "  IP " << interface.IpAddressStr() << "/"
                      << interface.SubnetMaskStr() << "  MAC " << interface.MacAddressStr() << '\n';

        // Wait up to 1000 ms for the cameras of each interface to answer.
        system->UpdateDevices(1000);
        const std::vector<Orvan::DeviceInfo> devices = system->GetDevices();
        std::cout << "Found " << devices.size() << " camera(s)\n";
        for (const Orvan::DeviceInfo& device : devices) {
            std::cout << "  " << device.VendorName() << " " << device.ModelName() << ", serial "
                      << device.SerialNumber() << ", version " << device.DeviceVersion() << '\n'
                      << "    IP " << device.IpAddressStr() << "/" << device.SubnetMaskStr()
                      << " gateway " << device.DefaultGatewayStr() << "  MAC "
                      << device.MacAddressStr() << '\n'
                      << "    user-defined name \"" << device.UserDefinedName() << "\"  DHCP "
                      << (device.IsDHCPConfigurationEnabled() ? "on" : "off") << "  persistent IP "
                      << (device.IsPersistentIpConfigurationEnabled() ? "on" : "off") << '\n';
        }

        Orvan::CloseSystem(system);
        return 0;
    } catch (const GenICam::GenericException& e) {
        // Every failure of the SDK arrives as a GenICam exception whose text says what failed.
        std::cerr << "error: " << e.what() << '\n';
        if (system != nullptr)
            Orvan::CloseSystem(system);
        return 1;
    }
}
