#include <GenTL/GenTL.h>
#include <Orvan/OrvanApi.h>

#include <iostream>

int main() {
    Orvan::ISystem* system = Orvan::OpenSystem();
    std::cout << "Orvan " << Orvan::GetVersion() << '\n';
    Orvan::CloseSystem(system);
    return Orvan::GetVersion() == "0.1.104.0" ? 0 : 1;
}
