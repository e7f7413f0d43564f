#include "AravisFakeCamera.h"

#include <arpa/inet.h>
#include <arv.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <thread>

namespace GigeTest {

namespace {

uint8_t PictureByte(uint64_t frame, size_t offset) {
    return static_cast<uint8_t>(frame * 31 + offset * 7 + (offset >> 8));
}

// Stamps the frame number into the first 8 bytes (little-endian) and draws the rest from it.
void Draw(ArvBuffer* buffer, void* counter, guint32, guint32, ArvPixelFormat format) {
    // The emulator hands over its own buffer to be drawn into; the image it will send is as
    // large as its geometry says (the buffer's filled size is only set after drawing).
    size_t unused = 0;
    auto* data = static_cast<uint8_t*>(const_cast<void*>(arv_buffer_get_data(buffer, &unused)));
    const size_t size = size_t(arv_buffer_get_image_width(buffer)) *
                        size_t(arv_buffer_get_image_height(buffer)) *
                        ARV_PIXEL_FORMAT_BIT_PER_PIXEL(format) / 8;
    if (!data || size < 8)
        return;
    const uint64_t frame = static_cast<std::atomic<uint64_t>*>(counter)->fetch_add(1);
    for (int i = 0; i < 8; ++i)
        data[i] = static_cast<uint8_t>(frame >> (8 * i));
    for (size_t i = 8; i < size; ++i)
        data[i] = PictureByte(frame, i);
}

// The emulator may share its port with another one without telling; a plain bind is the check
// that nobody holds it.
bool PortIsFree() {
    int probe = ::socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(3956);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    bool free = ::bind(probe, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0;
    ::close(probe);
    return free;
}

} // namespace

AravisFakeCamera::AravisFakeCamera(const std::string& serial) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    for (;;) {
        if (PortIsFree())
            m_camera = arv_gv_fake_camera_new_full("127.0.0.1", serial.c_str(), nullptr);
        if (m_camera && arv_gv_fake_camera_is_running(m_camera))
            break;
        if (m_camera)
            g_object_unref(m_camera);
        m_camera = nullptr;
        if (std::chrono::steady_clock::now() > deadline)
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
    }
    arv_fake_camera_set_fill_pattern(arv_gv_fake_camera_get_fake_camera(m_camera), &Draw,
                                     &m_frames);
}

AravisFakeCamera::~AravisFakeCamera() {
    if (m_camera)
        g_object_unref(m_camera);
}

bool AravisFakeCamera::Running() const {
    return m_camera != nullptr;
}

int64_t AravisFakeCamera::IntactFrame(const uint8_t* data, size_t size) {
    if (size < 8)
        return -1;
    uint64_t frame = 0;
    for (int i = 7; i >= 0; --i)
        frame = frame << 8 | data[i];
    for (size_t i = 8; i < size; ++i)
        if (data[i] != PictureByte(frame, i))
            return -1;
    return static_cast<int64_t>(frame);
}

} // namespace GigeTest
