// sdk_log_peer DIR MESSAGE: a second process for the logger tests. It builds a logger from the
// configuration in DIR, logs MESSAGE as a warning about user "peer", and ends.
#include <Orvan/ALogger.h>

#include <unistd.h>

int main(int argc, char** argv) {
    if (argc != 3 || chdir(argv[1]) != 0) {
        return 2;
    }
    Orvan::ALogger logger;
    Orvan::ALogger::Warn("peer", argv[2]);
    return 0;
}
