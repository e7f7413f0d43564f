// Shared by the tests that run the SDK against the producer's virtual cameras.
#ifndef ORVAN_TESTS_SDK_SPINETESTSUPPORT_H
#define ORVAN_TESTS_SDK_SPINETESTSUPPORT_H

#include <GenICam.h>
#include <GenTL/OrvanTestControl.h>

#include <functional>
#include <string>
#include <vector>

namespace SpineTest {

// What a call threw: the GenICam class it is an instance of (most derived first), or
// std::exception for any other, and its text; both empty when it returned.
struct Outcome {
    std::string className;
    std::string message;
};

inline Outcome Capture(const std::function<void()>& call) {
    try {
        call();
    } catch (const GenICam::InvalidArgumentException& e) {
        return {"InvalidArgumentException", e.what()};
    } catch (const GenICam::OutOfRangeException& e) {
        return {"OutOfRangeException", e.what()};
    } catch (const GenICam::RuntimeException& e) {
        return {"RuntimeException", e.what()};
    } catch (const GenICam::LogicalErrorException& e) {
        return {"LogicalErrorException", e.what()};
    } catch (const GenICam::TimeoutException& e) {
        return {"TimeoutException", e.what()};
    } catch (const GenICam::AccessException& e) {
        return {"AccessException", e.what()};
    } catch (const GenICam::BadAllocException& e) {
        return {"BadAllocException", e.what()};
    } catch (const GenICam::GenericException& e) {
        return {"GenericException", e.what()};
    } catch (const std::exception& e) {
        return {"std::exception", e.what()};
    }
    return {};
}

// The text of what the call threw ("" when it returned); it begins with the exception's class.
inline std::string Message(const std::function<void()>& call) {
    return Capture(call).message;
}

// Chooses the virtual cameras for the next system and restores the defaults afterwards.
class CameraSetup {
public:
    CameraSetup(const std::vector<const char*>& models, uint32_t interfaceCount) {
        OrvanTC_SetVirtualCameras(models.data(), static_cast<uint32_t>(models.size()),
                                  interfaceCount);
    }
    ~CameraSetup() { OrvanTC_Reset(); }
    CameraSetup(const CameraSetup&) = delete;
    CameraSetup& operator=(const CameraSetup&) = delete;
};

} // namespace SpineTest

#endif
