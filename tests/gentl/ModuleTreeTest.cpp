// The module tree through the GenTL functions: system, interfaces, devices and streams, their
// information, handle checking, access modes and the network extensions.
#include "ProducerFixture.h"

#include "VirtualNetwork.h"

using namespace GenTL;
using namespace Orvan::Producer;

namespace {

class ModuleTree : public ProducerFixture {};

std::string DeviceIdAt(IF_HANDLE interface, uint32_t index) {
    char id[64];
    size_t size = sizeof(id);
    EXPECT_EQ(IFGetDeviceID(interface, index, id, &size), GC_ERR_SUCCESS);
    return id;
}

} // namespace

TEST_F(ModuleTree, CamerasSpreadOverInterfacesAndAppearOnlyAfterAnUpdate) {
    UseCameras(3, FakeCamera::Options(), 2);
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    ASSERT_EQ(TLOpen(&m_system), GC_ERR_SUCCESS);
    uint32_t interfaces = 0;
    ASSERT_EQ(TLGetNumInterfaces(m_system, &interfaces), GC_ERR_SUCCESS);
    ASSERT_EQ(interfaces, 2u);
    const uint32_t expectedDevices[] = {2, 1};
    for (uint32_t i = 0; i < interfaces; ++i) {
        char id[64];
        size_t size = sizeof(id);
        ASSERT_EQ(TLGetInterfaceID(m_system, i, id, &size), GC_ERR_SUCCESS);
        EXPECT_EQ(InfoAs<uint64_t>(TLGetInterfaceInfo, m_system, id,
                                   INTERFACE_INFO_ORVAN_GEV_MAC_ADDRESS),
                  VirtualNetwork::InterfaceMac(i));
        IF_HANDLE interface = nullptr;
        ASSERT_EQ(TLOpenInterface(m_system, id, &interface), GC_ERR_SUCCESS);
        EXPECT_EQ(TLOpenInterface(m_system, id, &interface), GC_ERR_RESOURCE_IN_USE);
        uint32_t devices = 99;
        ASSERT_EQ(IFGetNumDevices(interface, &devices), GC_ERR_SUCCESS);
        EXPECT_EQ(devices, 0u);
        bool8_t changed = 0;
        ASSERT_EQ(IFUpdateDeviceList(interface, &changed, 100), GC_ERR_SUCCESS);
        EXPECT_TRUE(changed);
        ASSERT_EQ(IFUpdateDeviceList(interface, &changed, 100), GC_ERR_SUCCESS);
        EXPECT_FALSE(changed);
        ASSERT_EQ(IFGetNumDevices(interface, &devices), GC_ERR_SUCCESS);
        EXPECT_EQ(devices, expectedDevices[i]);
        EXPECT_EQ(IFGetDeviceID(interface, devices, id, &size), GC_ERR_INVALID_INDEX);
        TL_HANDLE parent = nullptr;
        EXPECT_EQ(IFGetParentTL(interface, &parent), GC_ERR_SUCCESS);
        EXPECT_EQ(parent, m_system);
    }
    EXPECT_EQ(TLOpenInterface(m_system, "NoSuchInterface", &m_interface), GC_ERR_INVALID_ID);
}

TEST_F(ModuleTree, DeviceInfoHasTheTypesConsumersReadBack) {
    Open();
    struct Row {
        DEVICE_INFO_CMD cmd;
        INFO_DATATYPE type;
    };
    const Row rows[] = {{DEVICE_INFO_ID, INFO_DATATYPE_STRING},
                        {DEVICE_INFO_VENDOR, INFO_DATATYPE_STRING},
                        {DEVICE_INFO_MODEL, INFO_DATATYPE_STRING},
                        {DEVICE_INFO_TLTYPE, INFO_DATATYPE_STRING},
                        {DEVICE_INFO_ACCESS_STATUS, INFO_DATATYPE_INT32},
                        {DEVICE_INFO_SERIAL_NUMBER, INFO_DATATYPE_STRING},
                        {DEVICE_INFO_TIMESTAMP_FREQUENCY, INFO_DATATYPE_UINT64},
                        {DEVICE_INFO_ORVAN_GEV_MAC_ADDRESS, INFO_DATATYPE_INT64},
                        {DEVICE_INFO_ORVAN_GEV_IP_ADDRESS, INFO_DATATYPE_UINT32},
                        {DEVICE_INFO_ORVAN_GEV_SUBNET_MASK, INFO_DATATYPE_UINT32},
                        {DEVICE_INFO_ORVAN_GEV_DEFAULT_GATEWAY, INFO_DATATYPE_UINT32},
                        {DEVICE_INFO_ORVAN_GEV_DHCP_ENABLED, INFO_DATATYPE_BOOL8},
                        {DEVICE_INFO_ORVAN_GEV_PERSISTENT_IP_ENABLED, INFO_DATATYPE_BOOL8},
                        {DEVICE_INFO_ORVAN_GEV_LLA_ENABLED, INFO_DATATYPE_BOOL8}};
    for (const Row& row : rows) {
        INFO_DATATYPE viaInterface = 0, viaDevice = 0;
        size_t size = 0;
        EXPECT_EQ(IFGetDeviceInfo(m_interface, m_deviceId.c_str(), row.cmd, &viaInterface, nullptr,
                                  &size),
                  GC_ERR_SUCCESS);
        EXPECT_EQ(DevGetInfo(m_device, row.cmd, &viaDevice, nullptr, &size), GC_ERR_SUCCESS);
        EXPECT_EQ(viaInterface, row.type) << row.cmd;
        EXPECT_EQ(viaDevice, row.type) << row.cmd;
    }
    EXPECT_EQ(InfoAs<int64_t>(DevGetInfo, m_device, DEVICE_INFO_ORVAN_GEV_MAC_ADDRESS),
              int64_t(Camera().Identity().mac));
    EXPECT_EQ(InfoText(DevGetInfo, m_device, DEVICE_INFO_SERIAL_NUMBER),
              Camera().Identity().serialNumber);
    EXPECT_EQ(InfoAs<bool8_t>(DevGetInfo, m_device, DEVICE_INFO_ORVAN_CONNECTED), 1);
    size_t size = 8;
    uint64_t value = 0;
    EXPECT_EQ(IFGetDeviceInfo(m_interface, m_deviceId.c_str(), DEVICE_INFO_ORVAN_CONNECTED, nullptr,
                              &value, &size),
              GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(DevGetInfo(m_device, DEVICE_INFO_ORVAN_RESERVED_1004, nullptr, &value, &size),
              GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(DevGetInfo(m_device, 4711, nullptr, &value, &size), GC_ERR_INVALID_PARAMETER);
}

TEST_F(ModuleTree, TextQueriesReportTheSizeTheyNeed) {
    Open();
    size_t size = 0;
    ASSERT_EQ(DevGetInfo(m_device, DEVICE_INFO_ID, nullptr, nullptr, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(size, m_deviceId.size() + 1);
    char tiny[2];
    size = sizeof(tiny);
    EXPECT_EQ(DevGetInfo(m_device, DEVICE_INFO_ID, nullptr, tiny, &size), GC_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, m_deviceId.size() + 1);
    EXPECT_NE(ProducerErrorText().find("needs"), std::string::npos);
    size = sizeof(tiny);
    EXPECT_EQ(IFGetDeviceID(m_interface, 0, tiny, &size), GC_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(DevGetInfo(m_device, DEVICE_INFO_ID, nullptr, tiny, nullptr),
              GC_ERR_INVALID_PARAMETER);
}

TEST_F(ModuleTree, StaleForeignAndMisplacedHandlesAreRejected) {
    Open();
    OpenStream();
    int foreign = 0;
    const GC_ERROR invalid = GC_ERR_INVALID_HANDLE;
    uint32_t count = 0;
    EXPECT_EQ(TLGetNumInterfaces(&foreign, &count), invalid);
    EXPECT_EQ(IFGetNumDevices(m_device, &count), invalid); // a device is not an interface
    EXPECT_EQ(DevGetNumDataStreams(m_stream, &count), invalid);
    EXPECT_EQ(DSClose(m_device), invalid);
    EXPECT_EQ(DSClose(nullptr), invalid);
    DEV_HANDLE device = m_device;
    DS_HANDLE stream = m_stream;
    ASSERT_EQ(DevClose(device), GC_ERR_SUCCESS); // closes its stream too
    EXPECT_EQ(DevClose(device), invalid);
    EXPECT_EQ(DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE), invalid);
    EXPECT_EQ(EventKill(m_newBuffer), invalid);
    ASSERT_EQ(IFOpenDevice(m_interface, m_deviceId.c_str(), DEVICE_ACCESS_CONTROL, &m_device),
              GC_ERR_SUCCESS);
    EXPECT_NE(m_device, device) << "handles are never reused";
    ASSERT_EQ(GCCloseLib(), GC_ERR_SUCCESS);
    EXPECT_EQ(DevGetNumDataStreams(m_device, &count), GC_ERR_NOT_INITIALIZED);
}

TEST_F(ModuleTree, ModulesOpenOnceAndChildrenCloseWithTheirParent) {
    Open();
    const std::string interfaceId = InfoText(IFGetInfo, m_interface, INTERFACE_INFO_ID);
    DEV_HANDLE second = nullptr;
    EXPECT_EQ(IFOpenDevice(m_interface, m_deviceId.c_str(), DEVICE_ACCESS_CONTROL, &second),
              GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(IFOpenDevice(m_interface, "Nobody", DEVICE_ACCESS_CONTROL, &second),
              GC_ERR_INVALID_ID);
    OpenStream();
    DS_HANDLE again = nullptr;
    EXPECT_EQ(DevOpenDataStream(m_device, "Stream0", &again), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(DevOpenDataStream(m_device, "Stream9", &again), GC_ERR_INVALID_ID);
    DEV_HANDLE parentDevice = nullptr;
    IF_HANDLE parentInterface = nullptr;
    EXPECT_EQ(DSGetParentDev(m_stream, &parentDevice), GC_ERR_SUCCESS);
    EXPECT_EQ(parentDevice, m_device);
    EXPECT_EQ(DevGetParentIF(m_device, &parentInterface), GC_ERR_SUCCESS);
    EXPECT_EQ(parentInterface, m_interface);
    ASSERT_EQ(TLClose(m_system), GC_ERR_SUCCESS);
    uint32_t count = 0;
    EXPECT_EQ(IFGetNumDevices(m_interface, &count), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(DSGetNumFlows(m_stream, &count), GC_ERR_INVALID_HANDLE);
    ASSERT_EQ(TLOpen(&m_system), GC_ERR_SUCCESS) << "the system can be opened again";
    EXPECT_EQ(TLUpdateInterfaceList(m_system, nullptr, 100), GC_ERR_SUCCESS);
    // Consumers that keep ids open the camera by them, without listing anything again.
    ASSERT_EQ(TLOpenInterface(m_system, interfaceId.c_str(), &m_interface), GC_ERR_SUCCESS);
    EXPECT_EQ(IFOpenDevice(m_interface, m_deviceId.c_str(), DEVICE_ACCESS_CONTROL, &m_device),
              GC_ERR_SUCCESS);
}

TEST_F(ModuleTree, AccessStatusFollowsTheOpenFlags) {
    Open(DEVICE_ACCESS_READONLY);
    EXPECT_EQ(InfoAs<int32_t>(DevGetInfo, m_device, DEVICE_INFO_ACCESS_STATUS),
              DEVICE_ACCESS_STATUS_READONLY);
    EXPECT_EQ(InfoAs<int32_t>(IFGetDeviceInfo, m_interface, m_deviceId.c_str(),
                              DEVICE_INFO_ACCESS_STATUS),
              DEVICE_ACCESS_STATUS_OPEN_READONLY);
    PORT_HANDLE remote = nullptr;
    ASSERT_EQ(DevGetPort(m_device, &remote), GC_ERR_SUCCESS);
    uint32_t value = 7;
    size_t size = sizeof(value);
    EXPECT_EQ(GCReadPort(remote, 0x100, &value, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(GCWritePort(remote, 0x100, &value, &size), GC_ERR_ACCESS_DENIED);
    ASSERT_EQ(DevClose(m_device), GC_ERR_SUCCESS);
    EXPECT_EQ(IFOpenDevice(m_interface, m_deviceId.c_str(), DEVICE_ACCESS_UNKNOWN, &m_device),
              GC_ERR_INVALID_PARAMETER);
    ASSERT_EQ(IFOpenDevice(m_interface, m_deviceId.c_str(), DEVICE_ACCESS_NONE, &m_device),
              GC_ERR_SUCCESS);
    ASSERT_EQ(DevGetPort(m_device, &remote), GC_ERR_SUCCESS);
    EXPECT_EQ(GCReadPort(remote, 0x100, &value, &size), GC_ERR_ACCESS_DENIED);
}

TEST_F(ModuleTree, NetworkExtensionsReachTheCamera) {
    Open();
    const uint64_t mac = Camera().Identity().mac;
    ASSERT_EQ(IFForceIp(m_interface, mac, 0x0A000005, 0xFFFFFF00, 0x0A000001), GC_ERR_SUCCESS);
    EXPECT_EQ(InfoAs<uint32_t>(DevGetInfo, m_device, DEVICE_INFO_ORVAN_GEV_IP_ADDRESS),
              0x0A000005u);
    EXPECT_EQ(IFForceIp(m_interface, 0x1234, 1, 2, 3), GC_ERR_INVALID_ID);
    ASSERT_EQ(DevSendActionCommand(m_device, 0xCAFE, 1, 1, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(Camera().LastActionDeviceKey(), 0xCAFEu);

    ASSERT_EQ(IFAddUnicastDiscoveryDevice(m_interface, 0x0A000007), GC_ERR_SUCCESS);
    ASSERT_EQ(IFAddUnicastDiscoveryDevice(m_interface, 0x0A000008), GC_ERR_SUCCESS);
    ASSERT_EQ(IFAddUnicastDiscoveryDevice(m_interface, 0x0A000007), GC_ERR_SUCCESS);
    uint32_t count = 0;
    ASSERT_EQ(IFGetUnicastDiscoveryDevices(m_interface, nullptr, &count), GC_ERR_SUCCESS);
    EXPECT_EQ(count, 2u);
    uint32_t ips[2] = {};
    count = 1;
    EXPECT_EQ(IFGetUnicastDiscoveryDevices(m_interface, ips, &count), GC_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(count, 2u);
    ASSERT_EQ(IFRemoveUnicastDiscoveryDevice(m_interface, 0x0A000007), GC_ERR_SUCCESS);
    ASSERT_EQ(IFRemoveUnicastDiscoveryDevice(m_interface, 0x0A000099), GC_ERR_SUCCESS);
    count = 2;
    ASSERT_EQ(IFGetUnicastDiscoveryDevices(m_interface, ips, &count), GC_ERR_SUCCESS);
    ASSERT_EQ(count, 1u);
    EXPECT_EQ(ips[0], 0x0A000008u);
}

TEST_F(ModuleTree, ALostDeviceFailsLikeOneAndComesBack) {
    Open();
    OpenStream();
    EVENT_HANDLE error = nullptr;
    ASSERT_EQ(GCRegisterEvent(m_device, EVENT_ERROR, &error), GC_ERR_SUCCESS);
    ASSERT_EQ(OrvanTC_SetDeviceConnected(m_deviceId.c_str(), 0), ORVAN_TC_OK);
    auto connected = [&] {
        return InfoAs<bool8_t>(DevGetInfo, m_device, DEVICE_INFO_ORVAN_CONNECTED);
    };
    EXPECT_EQ(connected(), 0);
    PORT_HANDLE remote = nullptr;
    ASSERT_EQ(DevGetPort(m_device, &remote), GC_ERR_SUCCESS);
    uint32_t value = 0;
    size_t size = sizeof(value);
    EXPECT_EQ(GCReadPort(remote, 0x100, &value, &size), GC_ERR_IO);
    AllocBuffers(1);
    EXPECT_EQ(DSStartAcquisition(m_stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE), GC_ERR_IO);
    EXPECT_EQ(DevSendActionCommand(m_device, 1, 1, 1, 0), GC_ERR_IO);
    uint8_t data[256];
    size = sizeof(data);
    ASSERT_EQ(EventGetData(error, data, &size, 1000), GC_ERR_SUCCESS);
    EXPECT_EQ(InfoAs<int32_t>(EventGetDataInfo, error, data, size, EVENT_DATA_ID), GC_ERR_IO);
    bool8_t changed = 0;
    uint32_t devices = 9;
    ASSERT_EQ(IFUpdateDeviceList(m_interface, &changed, 100), GC_ERR_SUCCESS);
    ASSERT_EQ(IFGetNumDevices(m_interface, &devices), GC_ERR_SUCCESS);
    EXPECT_TRUE(changed);
    EXPECT_EQ(devices, 0u);

    ASSERT_EQ(OrvanTC_SetDeviceConnected(m_deviceId.c_str(), 1), ORVAN_TC_OK);
    EXPECT_EQ(connected(), 1);
    EXPECT_EQ(GCReadPort(remote, 0x100, &value, &size), GC_ERR_SUCCESS);
    ASSERT_EQ(IFUpdateDeviceList(m_interface, &changed, 100), GC_ERR_SUCCESS);
    EXPECT_EQ(DeviceIdAt(m_interface, 0), m_deviceId);
    EXPECT_EQ(OrvanTC_SetDeviceConnected("Nobody", 0), ORVAN_TC_NOT_FOUND);
}
