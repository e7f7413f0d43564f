// The first program a new user runs: open the SDK, say which version it is, close it again.
#include <Orvan/OrvanApi.h>

#include <iostream>

int main() {
    try {
        Orvan::ISystem* system = Orvan::OpenSystem();
        std::cout << "Orvan SDK " << Orvan::GetVersion() << " opened\n";
        Orvan::CloseSystem(system);
        std::cout << "Closed\n";
        return 0;
    } catch (const GenICam::GenericException& e) {
        std::cerr << "error: " << e.what() << '\n';
        return 1;
    }
}
