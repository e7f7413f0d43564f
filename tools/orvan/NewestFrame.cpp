#include "NewestFrame.h"

namespace Orvan {
namespace Cli {

void NewestFrame::Publish() {
    const unsigned previous = m_middle.exchange(m_writing | kFresh);
    if (previous & kFresh)
        ++m_replaced;
    m_writing = previous & kIndex;
}

const RawFrame* NewestFrame::TakeNewest() {
    if (!HasNew())
        return nullptr;
    m_reading = m_middle.exchange(m_reading) & kIndex;
    return &m_slots[m_reading];
}

} // namespace Cli
} // namespace Orvan
