#include <Orvan/OrvanApi.h>

#include <gtest/gtest.h>

#include <string>

namespace {

class NotASystem : public Orvan::ISystem {};

} // namespace

TEST(Lifecycle, VersionIsFixedWithOrWithoutASystem) {
    EXPECT_EQ(Orvan::GetVersion(), "0.1.104.0");
    Orvan::ISystem* system = Orvan::OpenSystem();
    EXPECT_EQ(Orvan::GetVersion(), "0.1.104.0");
    Orvan::CloseSystem(system);
}

TEST(Lifecycle, SystemCanBeOpenedAgainAfterClosing) {
    for (int i = 0; i < 3; ++i) {
        Orvan::ISystem* system = nullptr;
        ASSERT_NO_THROW(system = Orvan::OpenSystem());
        ASSERT_NE(system, nullptr);
        EXPECT_NO_THROW(Orvan::CloseSystem(system));
    }
}

TEST(Lifecycle, SecondOpenWhileOpenIsRefused) {
    Orvan::ISystem* system = Orvan::OpenSystem();
    try {
        Orvan::OpenSystem();
        ADD_FAILURE() << "a second system opened";
    } catch (const GenICam::RuntimeException& e) {
        std::string message = e.what();
        EXPECT_EQ(message.rfind("RuntimeException (GenTL::GC_ERR_RESOURCE_IN_USE): Library "
                                "already initialized (must initialize only once) (Orvan, "
                                "OpenSystem; GenTL::GCInitLib); ",
                                0),
                  0u)
            << message;
    }
    Orvan::CloseSystem(system);
}

TEST(Lifecycle, ClosingNullOrAForeignObjectClosesNothing) {
    try {
        Orvan::CloseSystem(nullptr);
        ADD_FAILURE() << "closing null succeeded";
    } catch (const GenICam::InvalidArgumentException& e) {
        EXPECT_STREQ(e.what(), "InvalidArgumentException: System is null (Orvan, CloseSystem)");
    }
    NotASystem foreign;
    EXPECT_THROW(Orvan::CloseSystem(&foreign), GenICam::InvalidArgumentException);
    // Nothing was de-initialised: a system opens normally afterwards.
    Orvan::ISystem* system = Orvan::OpenSystem();
    Orvan::CloseSystem(system);
}
