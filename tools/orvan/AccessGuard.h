// Who may use the viewer. On the loopback address only programs of this machine reach it, and
// the guard only makes sure a web page from elsewhere cannot drive the camera through the
// user's browser. Bound to any other address it also asks every request for the access token
// it generated, which the printed URL carries.
#ifndef ORVAN_TOOLS_ORVAN_ACCESSGUARD_H
#define ORVAN_TOOLS_ORVAN_ACCESSGUARD_H

#include <httplib.h>

#include <string>

namespace Orvan {
namespace Cli {

struct Refusal {
    int status = 0; // 0: the request may go on
    std::string message;
};

class AccessGuard {
public:
    explicit AccessGuard(const std::string& bindAddress);

    bool TokenRequired() const { return m_tokenRequired; }
    const std::string& Token() const { return m_token; }
    Refusal Check(const httplib::Request& request) const;

private:
    bool m_tokenRequired;
    std::string m_token;
};

} // namespace Cli
} // namespace Orvan

#endif
