// The host's datarefs: the simulator's own table, plug-in accessors of every type,
// X-Plane's array clipping, and shared data.
#include <gtest/gtest.h>

#include <cstring>

#include "XPLMDataAccess.h"
#include "host/host.h"

namespace {

class HostDataRefs : public ::testing::Test {
protected:
    void SetUp() override { xphost::reset(); }
};

TEST_F(HostDataRefs, SimulatorTableHasRealisticDefaultsAndTypes) {
    XPLMDataRef view = XPLMFindDataRef("sim/graphics/view/view_type");
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(XPLMGetDataRefTypes(view), xplmType_Int);
    EXPECT_EQ(XPLMGetDatai(view), 1026);
    // Read with the wrong type, as X-Plane answers: nothing.
    EXPECT_EQ(XPLMGetDataf(view), 0.0f);
    EXPECT_FLOAT_EQ(XPLMGetDataf(XPLMFindDataRef("sim/graphics/view/field_of_view_deg")), 60.0f);
    EXPECT_EQ(XPLMGetDatai(XPLMFindDataRef("sim/graphics/VR/enabled")), 0);
    EXPECT_NEAR(XPLMGetDataf(XPLMFindDataRef("sim/operation/misc/frame_rate_period")), 1.0f / 30, 1e-6);

    // Plug-ins can't write read-only datarefs; the host can.
    XPLMDataRef vr = XPLMFindDataRef("sim/graphics/VR/enabled");
    EXPECT_EQ(XPLMCanWriteDataRef(vr), 0);
    XPLMSetDatai(vr, 1);
    EXPECT_EQ(XPLMGetDatai(vr), 0);
    EXPECT_TRUE(xphost::forceValue("sim/graphics/VR/enabled", 1));
    EXPECT_EQ(XPLMGetDatai(vr), 1);

    // Doubles answer float reads too, as the simulator's position datarefs do.
    XPLMDataRef x = XPLMFindDataRef("sim/flightmodel/position/local_x");
    XPLMSetDatad(x, 1234.5);
    EXPECT_FLOAT_EQ(XPLMGetDataf(x), 1234.5f);

    EXPECT_EQ(XPLMFindDataRef("sim/does/not/exist"), nullptr);
    ASSERT_FALSE(xphost::unknownDataRefLookups().empty());
    EXPECT_EQ(xphost::unknownDataRefLookups().back(), "sim/does/not/exist");
}

TEST_F(HostDataRefs, ArrayReadsClipLikeXPlane) {
    XPLMDataRef axes = XPLMFindDataRef("sim/joystick/joystick_axis_values");
    ASSERT_NE(axes, nullptr);
    EXPECT_EQ(XPLMGetDatavf(axes, nullptr, 0, 0), 500);
    xphost::forceValue("sim/joystick/joystick_axis_values", 0.25, 497);
    float out[10] = {0};
    EXPECT_EQ(XPLMGetDatavf(axes, out, 495, 10), 5);
    EXPECT_FLOAT_EQ(out[2], 0.25f);
    EXPECT_EQ(XPLMGetDatavf(axes, out, 500, 10), 0);
    EXPECT_EQ(XPLMGetDatavf(axes, out, -1, 10), 0);

    XPLMDataRef assignments = XPLMFindDataRef("sim/joystick/joystick_axis_assignments");
    int in[4] = {7, 8, 9, 10};
    XPLMSetDatavi(assignments, in, 498, 4);  // only two fit
    int back[3] = {0, 0, 0};
    EXPECT_EQ(XPLMGetDatavi(assignments, back, 497, 3), 3);
    EXPECT_EQ(back[0], 0);
    EXPECT_EQ(back[1], 7);
    EXPECT_EQ(back[2], 8);
}

struct Published {
    int i = 3;
    float f = 1.5f;
    double d = 2.25;
    int ints[4] = {1, 2, 3, 4};
    float floats[3] = {0.5f, 0.25f, 0.125f};
    char bytes[8] = "abcdefg";
    int writes = 0;
};

int readInt(void* r) { return static_cast<Published*>(r)->i; }
void writeInt(void* r, int v) {
    static_cast<Published*>(r)->i = v;
    static_cast<Published*>(r)->writes++;
}
float readFloat(void* r) { return static_cast<Published*>(r)->f; }
double readDouble(void* r) { return static_cast<Published*>(r)->d; }

template <typename T, int N>
int readArray(T (&values)[N], T* out, int offset, int max) {
    if (!out) return N;
    int n = 0;
    for (int k = offset; k < N && n < max; ++k) out[n++] = values[k];
    return n;
}
int readInts(void* r, int* out, int offset, int max) { return readArray(static_cast<Published*>(r)->ints, out, offset, max); }
int readFloats(void* r, float* out, int offset, int max) {
    return readArray(static_cast<Published*>(r)->floats, out, offset, max);
}
int readBytes(void* r, void* out, int offset, int max) {
    return readArray(static_cast<Published*>(r)->bytes, static_cast<char*>(out), offset, max);
}

TEST_F(HostDataRefs, AccessorsOfEveryTypeRouteToTheirCallbacks) {
    Published p;
    XPLMDataRef ref = XPLMRegisterDataAccessor(
        "test/all_types", xplmType_Int | xplmType_Float | xplmType_Double | xplmType_IntArray |
                              xplmType_FloatArray | xplmType_Data,
        1, readInt, writeInt, readFloat, nullptr, readDouble, nullptr, readInts, nullptr, readFloats, nullptr,
        readBytes, nullptr, &p, &p);
    ASSERT_NE(ref, nullptr);
    EXPECT_EQ(XPLMFindDataRef("test/all_types"), ref);
    EXPECT_EQ(XPLMGetDatai(ref), 3);
    EXPECT_FLOAT_EQ(XPLMGetDataf(ref), 1.5f);
    EXPECT_DOUBLE_EQ(XPLMGetDatad(ref), 2.25);
    EXPECT_EQ(XPLMGetDatavi(ref, nullptr, 0, 0), 4);
    float f[2];
    EXPECT_EQ(XPLMGetDatavf(ref, f, 1, 2), 2);
    EXPECT_FLOAT_EQ(f[1], 0.125f);
    char b[4] = {0};
    EXPECT_EQ(XPLMGetDatab(ref, b, 2, 3), 3);
    EXPECT_EQ(std::string(b), "cde");

    XPLMSetDatai(ref, 42);
    EXPECT_EQ(p.i, 42);
    // A write without its callback is dropped, not a crash.
    XPLMSetDataf(ref, 9.0f);
    EXPECT_FLOAT_EQ(p.f, 1.5f);
    EXPECT_EQ(xphost::getValue("test/all_types"), 2.25);  // the widest scalar type

    // A name can't be registered twice; the first owner keeps it.
    Published other;
    EXPECT_EQ(XPLMRegisterDataAccessor("test/all_types", xplmType_Int, 0, readInt, nullptr, nullptr, nullptr,
                                       nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                       &other, nullptr),
              nullptr);

    XPLMUnregisterDataAccessor(ref);
    EXPECT_EQ(XPLMFindDataRef("test/all_types"), nullptr);
    EXPECT_EQ(XPLMGetDatai(ref), 0);  // a stale handle answers nothing
}

TEST_F(HostDataRefs, UnsetReadCallbacksGiveZero) {
    Published p;
    XPLMDataRef ref = XPLMRegisterDataAccessor("test/int_only", xplmType_Int, 0, readInt, nullptr, nullptr,
                                               nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                               nullptr, nullptr, &p, nullptr);
    EXPECT_EQ(XPLMGetDataf(ref), 0.0f);
    EXPECT_EQ(XPLMGetDatavi(ref, nullptr, 0, 0), 0);
    EXPECT_EQ(XPLMCanWriteDataRef(ref), 0);
    EXPECT_FALSE(xphost::setValue("test/int_only", 5));
}

int notifications = 0;
void countNotification(void*) { ++notifications; }

TEST_F(HostDataRefs, SharedDataNotifiesEverySharerOnWrite) {
    notifications = 0;
    ASSERT_EQ(XPLMShareData("test/shared", xplmType_Float, countNotification, nullptr), 1);
    ASSERT_EQ(XPLMShareData("test/shared", xplmType_Float, countNotification, &notifications), 1);
    EXPECT_EQ(XPLMShareData("test/shared", xplmType_Int, nullptr, nullptr), 0);  // other type
    XPLMDataRef ref = XPLMFindDataRef("test/shared");
    XPLMSetDataf(ref, 4.0f);
    EXPECT_EQ(notifications, 2);
    EXPECT_FLOAT_EQ(XPLMGetDataf(ref), 4.0f);
    EXPECT_EQ(XPLMUnshareData("test/shared", xplmType_Float, countNotification, nullptr), 1);
    XPLMSetDataf(ref, 5.0f);
    EXPECT_EQ(notifications, 3);
}

}  // namespace
