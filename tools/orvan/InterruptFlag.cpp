#include "InterruptFlag.h"

namespace Orvan {
namespace Cli {

namespace {

volatile std::sig_atomic_t g_raised = 0;

void Raise(int) {
    g_raised = 1;
}

} // namespace

InterruptFlag::InterruptFlag() {
    g_raised = 0;
    struct sigaction action {};
    action.sa_handler = Raise;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, &m_previousInt);
    sigaction(SIGTERM, &action, &m_previousTerm);
}

InterruptFlag::~InterruptFlag() {
    sigaction(SIGINT, &m_previousInt, nullptr);
    sigaction(SIGTERM, &m_previousTerm, nullptr);
}

bool InterruptFlag::Raised() const {
    return g_raised != 0;
}

} // namespace Cli
} // namespace Orvan
