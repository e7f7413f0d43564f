// Debian's Aravis camera emulator as an independent peer for the GigE Vision transport: one
// camera on 127.0.0.1, GVCP port 3956, drawing pictures that carry their frame number so that a
// receiver can tell a lost or damaged image.
#ifndef ORVAN_TESTS_GENTL_GIGE_ARAVISFAKECAMERA_H
#define ORVAN_TESTS_GENTL_GIGE_ARAVISFAKECAMERA_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

typedef struct _ArvGvFakeCamera ArvGvFakeCamera;

namespace GigeTest {

class AravisFakeCamera {
public:
    // Port 3956 may be held by another test's emulator for a while: waits for it.
    explicit AravisFakeCamera(const std::string& serial);
    ~AravisFakeCamera();
    AravisFakeCamera(const AravisFakeCamera&) = delete;
    AravisFakeCamera& operator=(const AravisFakeCamera&) = delete;

    bool Running() const;
    // The frame number drawn into an image, or -1 when any byte differs from the picture of
    // that number.
    static int64_t IntactFrame(const uint8_t* data, size_t size);

private:
    ArvGvFakeCamera* m_camera = nullptr;
    std::atomic<uint64_t> m_frames{0};
};

} // namespace GigeTest

#endif
