// Caching, invalidation, callbacks, access-mode rules, verification and selectors.
#include "GenApiTestSupport.h"

#include <gtest/gtest.h>

#include <thread>

using namespace GenApi;
using genapitest::IntReg;
using genapitest::LoadedMap;

struct CachingCase {
    const char* mode;
    int readsAfterWriteAndRead; // port reads for: write, read, read
    bool validAfterWrite;
};

class Caching : public ::testing::TestWithParam<CachingCase> {};

TEST_P(Caching, DecidesWhetherReadsReachThePort) {
    const CachingCase& c = GetParam();
    LoadedMap map(IntReg("Reg", 0, (std::string("<Cachable>") + c.mode + "</Cachable>").c_str()));
    CIntegerPtr reg = map.Node("Reg");
    reg->SetValue(3);
    EXPECT_EQ(reg->IsValueCacheValid(), c.validAfterWrite);
    int before = map.port.reads;
    EXPECT_EQ(reg->GetValue(), 3);
    EXPECT_EQ(reg->GetValue(), 3);
    EXPECT_EQ(map.port.reads - before, c.readsAfterWriteAndRead);
    EXPECT_EQ(map.Node("Reg")->GetCachingMode(),
              std::string(c.mode) == "NoCache"
                  ? NoCache
                  : (std::string(c.mode) == "WriteAround" ? WriteAround : WriteThrough));
}

INSTANTIATE_TEST_SUITE_P(AllModes, Caching,
                         ::testing::Values(CachingCase{"WriteThrough", 0, true},
                                           CachingCase{"WriteAround", 1, false},
                                           CachingCase{"NoCache", 2, false}));

TEST(Invalidation, ReachesDependentsAndDeclaredInvalidators) {
    LoadedMap map(IntReg("Trigger", 0) +
                  IntReg("Cached", 4, "<pInvalidator>Trigger</pInvalidator>") +
                  R"(<Integer Name="View"><pValue>Cached</pValue></Integer>)");
    map.port.Set32(4, 1);
    CIntegerPtr view = map.Node("View");
    EXPECT_EQ(view->GetValue(), 1);
    map.port.Set32(4, 2); // the device changes behind the cache
    EXPECT_EQ(view->GetValue(), 1);
    EXPECT_TRUE(view->IsValueCacheValid());
    CIntegerPtr(map.Node("Trigger"))->SetValue(1);
    EXPECT_FALSE(view->IsValueCacheValid());
    EXPECT_EQ(view->GetValue(), 2);
    map.port.Set32(4, 3);
    map.ref._InvalidateNodes();
    EXPECT_EQ(view->GetValue(), 3);
    EXPECT_EQ(view->GetValue(true, true), 3);
}

struct CallbackCounter {
    void OnChange(INode*) { ++calls; }
    int calls = 0;
};

int g_freeCalls = 0;
void FreeCallback(INode*) {
    ++g_freeCalls;
}

TEST(Callbacks, FireForTheNodeAndEverythingItDependsOn) {
    LoadedMap map(IntReg("Reg", 0) + R"(<Integer Name="View"><pValue>Reg</pValue></Integer>)");
    CallbackCounter inside, outside;
    CallbackHandleType a = Register(map.Node("View"), inside, &CallbackCounter::OnChange);
    CallbackHandleType b =
        Register(map.Node("View"), outside, &CallbackCounter::OnChange, cbPostOutsideLock);
    g_freeCalls = 0;
    CallbackHandleType c = Register(map.Node("Reg"), &FreeCallback);
    CIntegerPtr(map.Node("Reg"))->SetValue(5);
    EXPECT_EQ(inside.calls, 1);
    EXPECT_EQ(outside.calls, 1);
    EXPECT_EQ(g_freeCalls, 1);
    map.Node("View")->InvalidateNode();
    EXPECT_EQ(inside.calls, 2);
    EXPECT_EQ(g_freeCalls, 1) << "invalidating a node does not reach what it depends on";
    Deregister(a);
    Deregister(b);
    Deregister(c);
    CIntegerPtr(map.Node("Reg"))->SetValue(6);
    EXPECT_EQ(inside.calls, 2);
    EXPECT_EQ(g_freeCalls, 1);
}

TEST(Callbacks, OutsideLockRunsWithTheLockFree) {
    LoadedMap map(IntReg("Reg", 0));
    INodeMap* nodeMap = map.ref._Ptr;
    bool lockFree = false;
    struct Probe {
        INodeMap* nodeMap;
        bool* lockFree;
        void Check(INode*) {
            // Another thread can take the lock only if this one does not hold it.
            std::thread other([this] {
                *lockFree = nodeMap->GetLock().TryLock();
                if (*lockFree)
                    nodeMap->GetLock().Unlock();
            });
            other.join();
        }
    } probe{nodeMap, &lockFree};
    Register(map.Node("Reg"), probe, &Probe::Check, cbPostOutsideLock);
    CIntegerPtr(map.Node("Reg"))->SetValue(1);
    EXPECT_TRUE(lockFree);
}

struct AccessCase {
    const char* extra;
    EAccessMode expected;
};

class AccessModes : public ::testing::TestWithParam<AccessCase> {};

TEST_P(AccessModes, CombineImplementedAvailableLockedAndImposed) {
    LoadedMap map(R"(<Integer Name="Zero"><Value>0</Value></Integer>
        <Integer Name="One"><Value>1</Value></Integer>)" +
                  IntReg("Reg", 0, GetParam().extra));
    EXPECT_EQ(map.Node("Reg")->GetAccessMode(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, AccessModes,
    ::testing::Values(AccessCase{"", RW}, AccessCase{"<pIsImplemented>Zero</pIsImplemented>", NI},
                      AccessCase{"<pIsAvailable>Zero</pIsAvailable>", NA},
                      AccessCase{"<pIsImplemented>One</pIsImplemented>"
                                 "<pIsAvailable>Zero</pIsAvailable>",
                                 NA},
                      AccessCase{"<pIsLocked>One</pIsLocked>", RO},
                      AccessCase{"<pIsLocked>Zero</pIsLocked>", RW},
                      AccessCase{"<ImposedAccessMode>RO</ImposedAccessMode>", RO},
                      AccessCase{"<ImposedAccessMode>WO</ImposedAccessMode>", WO}));

TEST(AccessModes, UnconnectedPortMakesRegistersUnavailable) {
    GenApi::CNodeMapRef ref;
    ref._LoadXMLFromString(genapitest::Describe(IntReg("Reg", 0)).c_str());
    EXPECT_EQ(ref._GetNode("Reg")->GetAccessMode(), NA);
    EXPECT_FALSE(IsReadable(ref._GetNode("Reg")));
}

struct VerifyCase {
    int64_t value;
    bool outOfRange;
};

class Verification : public ::testing::TestWithParam<VerifyCase> {};

TEST_P(Verification, RejectsValuesOutsideTheLimitsOrOffTheIncrement) {
    LoadedMap map(IntReg("Reg", 0) + R"(<Integer Name="Width"><pValue>Reg</pValue>
        <Min>10</Min><Max>100</Max><Inc>5</Inc></Integer>)");
    CIntegerPtr width = map.Node("Width");
    if (GetParam().outOfRange) {
        EXPECT_THROW(width->SetValue(GetParam().value), GenICam::OutOfRangeException);
        EXPECT_EQ(map.port.writes, 0);
    } else {
        width->SetValue(GetParam().value);
        EXPECT_EQ(width->GetValue(), GetParam().value);
    }
    width->SetValue(7, false); // without verification anything goes
    EXPECT_EQ(width->GetValue(), 7);
}

INSTANTIATE_TEST_SUITE_P(Limits, Verification,
                         ::testing::Values(VerifyCase{10, false}, VerifyCase{100, false},
                                           VerifyCase{55, false}, VerifyCase{5, true},
                                           VerifyCase{105, true}, VerifyCase{12, true}));

TEST(Verification, WritingANodeThatIsNotWritableIsAnAccessError) {
    LoadedMap map(IntReg("Reg", 0, "<ImposedAccessMode>RO</ImposedAccessMode>"));
    EXPECT_THROW(CIntegerPtr(map.Node("Reg"))->SetValue(1, false), GenICam::AccessException);
    EXPECT_EQ(map.port.writes, 0);
}

TEST(Selectors, KnowWhatTheySelectAndWhatSelectsThem) {
    LoadedMap map(IntReg("Gain", 0) + R"(<Integer Name="GainSelector"><Value>0</Value>
        <pSelected>Gain</pSelected></Integer>)");
    CSelectorPtr selector = map.Node("GainSelector");
    EXPECT_TRUE(selector->IsSelector());
    FeatureList_t selected;
    selector->GetSelectedFeatures(selected);
    ASSERT_EQ(selected.size(), 1u);
    EXPECT_EQ(selected[0]->GetNode()->GetName(), "Gain");
    FeatureList_t selecting;
    CSelectorPtr(map.Node("Gain"))->GetSelectingFeatures(selecting);
    ASSERT_EQ(selecting.size(), 1u);
    EXPECT_EQ(selecting[0]->GetNode()->GetName(), "GainSelector");
    EXPECT_FALSE(CSelectorPtr(map.Node("Gain"))->IsSelector());
}

TEST(SmartPointers, BindByInterfaceAndRefuseNullDereference) {
    LoadedMap map(IntReg("Reg", 0));
    CFloatPtr notFloat = map.Node("Reg");
    EXPECT_FALSE(notFloat.IsValid());
    EXPECT_FALSE(IsReadable(notFloat));
    try {
        notFloat->GetValue();
        FAIL();
    } catch (const GenICam::LogicalErrorException& e) {
        EXPECT_STREQ(e.GetDescription(), "NULL pointer dereferenced");
    }
    CValuePtr value = map.Node("Reg");
    CIntegerPtr integer = value;
    EXPECT_TRUE(integer.IsValid());
    EXPECT_TRUE(CNodePtr(map.Node("Missing")) == NULL);
}

TEST(NodeMapLock, ConcurrentWritersAndReadersStayConsistent) {
    LoadedMap map(IntReg("A", 0) + IntReg("B", 4));
    CIntegerPtr a = map.Node("A");
    CIntegerPtr b = map.Node("B");
    auto writer = [&](int offset) {
        for (int i = 0; i < 200; ++i) {
            AutoLock lock(map.ref._Ptr->GetLock());
            a->SetValue(i + offset);
            b->SetValue(i + offset);
        }
    };
    std::thread first(writer, 0), second(writer, 1000);
    for (int i = 0; i < 200; ++i) {
        AutoLock lock(map.ref._Ptr->GetLock());
        EXPECT_EQ(a->GetValue(), b->GetValue());
    }
    first.join();
    second.join();
}

TEST(Cycles, LinksThatLoopEndInAnExceptionNotAStackOverflow) {
    LoadedMap map(R"(<Integer Name="A"><pValue>B</pValue></Integer>
        <Integer Name="B"><pValue>A</pValue></Integer>
        <IntSwissKnife Name="K"><pVariable Name="X">K</pVariable><Formula>X</Formula></IntSwissKnife>)");
    EXPECT_THROW(CIntegerPtr(map.Node("A"))->GetValue(), GenICam::RuntimeException);
    EXPECT_THROW(CIntegerPtr(map.Node("K"))->GetValue(), GenICam::RuntimeException);
    // The map stays usable afterwards: the lock was released on the way out.
    std::thread other([&] { EXPECT_NE(map.ref._GetNode("A"), nullptr); });
    other.join();
}
