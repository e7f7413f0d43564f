#include <GenICam.h>

#include <iostream>

int main() {
    try {
        throw RUNTIME_EXCEPTION("from %s", "outside");
    } catch (const GenICam::GenericException& e) {
        std::cout << e.what() << '\n';
        return GenICam::gcstring(e.what()) == "from outside" ? 0 : 1;
    }
}
