// The orbit and fly-by generators: the chains they build (counts, transitions, the
// auto-advance ends, hidden flags, positions and headings), replacing a category of the
// same name, and the full set refused with a message and no change.
#include <cmath>
#include <cstring>

#include "data/generators.h"
#include "panels/messages.h"
#include "user_files_fixture.h"

namespace {

class GeneratorsTest : public UserFilesTest {
protected:
    void SetUp() override {
        UserFilesTest::SetUp();
        clearWorkingSet();
        findOrAddCategory("Cockpit", true);
        categoryAt(0)->cameraCount = 1;
        copyText(categoryAt(0)->cameras[0].name, "Pilot View");
        relinkSet(true);
    }
    static OrbitOptions orbit(const char* name) {
        OrbitOptions o;
        copyText(o.name, name);
        return o;
    }
    static FlyByOptions flyBy(const char* name) {
        FlyByOptions o;
        copyText(o.name, name);
        return o;
    }
};

TEST_F(GeneratorsTest, DefaultOrbitIsAClosedChainOf37Cameras) {
    ASSERT_TRUE(createOrbit(orbit("Round")));
    const int index = findOrAddCategory("Round", false);
    ASSERT_EQ(index, 1);
    const Category& c = *categoryAt(index);
    ASSERT_EQ(c.cameraCount, 37);
    EXPECT_EQ(c.currentCamera, 0);
    EXPECT_STREQ(c.cameras[0].name, "Round - 0");
    EXPECT_STREQ(c.cameras[36].name, "Round - 36");
    EXPECT_FALSE(c.cameras[0].linearTransition);
    EXPECT_EQ(c.cameras[0].transitionSeconds, 0.0f);
    EXPECT_FALSE(c.cameras[0].hidden);
    for (int i = 1; i < 37; ++i) {
        EXPECT_TRUE(c.cameras[i].linearTransition) << i;
        EXPECT_FLOAT_EQ(c.cameras[i].transitionSeconds, 30.0f / 37.0f) << i;
        EXPECT_TRUE(c.cameras[i].hidden) << i;
    }
    for (int i = 0; i < 36; ++i) EXPECT_TRUE(c.cameras[i].autoAdvance) << i;
    EXPECT_FALSE(c.cameras[36].autoAdvance) << "the last camera ends the chain";

    const Camera& first = c.cameras[0];
    EXPECT_TRUE(first.external && first.trackHeading && first.trackPitch);
    EXPECT_FALSE(first.temporaryPositioning || first.retainMouseLook || first.smoothCameraJoins);
    EXPECT_EQ(first.initialMovementRange, 2);
    // Heading 270: the camera stands 10 m east (x = -sin(270) * 10), in the middle of
    // the height range; the 37th stands where the first stood.
    EXPECT_NEAR(first.x, 10.0f, 1e-4);
    EXPECT_NEAR(first.z, 0.0f, 1e-4);
    EXPECT_NEAR(first.y, 0.0f, 1e-4);
    EXPECT_FLOAT_EQ(first.heading, 270.0f);
    EXPECT_NEAR(c.cameras[36].x, first.x, 1e-3);
    EXPECT_NEAR(c.cameras[36].z, first.z, 1e-3);
    EXPECT_FLOAT_EQ(c.cameras[1].heading, 280.0f) << "without reverse: 10 degrees to the right";
    EXPECT_NEAR(c.cameras[1].y, std::sin(350.0f * 3.14159265f / 180.0f) * 3.0f, 1e-4);
}

TEST_F(GeneratorsTest, ContinuousAndReverseOrbits) {
    OrbitOptions o = orbit("Loop");
    o.continuous = true;
    o.levelCamera = true;
    ASSERT_TRUE(createOrbit(o));
    const Category& loop = *categoryAt(findOrAddCategory("Loop", false));
    ASSERT_EQ(loop.cameraCount, 36);
    for (int i = 0; i < 36; ++i) {
        EXPECT_TRUE(loop.cameras[i].linearTransition) << i;
        EXPECT_FLOAT_EQ(loop.cameras[i].transitionSeconds, 30.0f / 36.0f) << i;
        EXPECT_TRUE(loop.cameras[i].autoAdvance) << "the circle never ends";
        EXPECT_TRUE(loop.cameras[i].levelCamera);
    }
    EXPECT_FALSE(loop.cameras[0].hidden);

    o = orbit("Back");
    o.reverse = true;
    o.initialHeading = 5.0f;
    o.minHeight = o.maxHeight = 4.0f;
    ASSERT_TRUE(createOrbit(o));
    const Category& back = *categoryAt(findOrAddCategory("Back", false));
    EXPECT_FLOAT_EQ(back.cameras[1].heading, 355.0f) << "reverse: 10 degrees to the left, brought into 0..360";
    for (int i = 0; i < back.cameraCount; ++i) EXPECT_FLOAT_EQ(back.cameras[i].y, 4.0f) << "a flat range stays level";
}

TEST_F(GeneratorsTest, DefaultFlyByPassesFrom550To450AcrossTheClosestPoint) {
    ASSERT_TRUE(createFlyBy(flyBy("Pass")));
    const Category& c = *categoryAt(findOrAddCategory("Pass", false));
    ASSERT_EQ(c.cameraCount, 2);
    const Camera& a = c.cameras[0];
    const Camera& b = c.cameras[1];
    EXPECT_NEAR(a.x, 550.0f, 1e-3);
    EXPECT_NEAR(b.x, -450.0f, 1e-3);
    EXPECT_NEAR(a.z, -10.0f, 1e-3);
    EXPECT_NEAR(b.z, -10.0f, 1e-3);
    EXPECT_FLOAT_EQ(a.y, 35.0f);
    EXPECT_FLOAT_EQ(b.y, -15.0f);
    EXPECT_FLOAT_EQ(a.heading, 270.0f);
    EXPECT_FLOAT_EQ(b.heading, 90.0f);
    EXPECT_TRUE(a.autoAdvance);
    EXPECT_FALSE(b.autoAdvance);
    EXPECT_FALSE(a.linearTransition);
    EXPECT_TRUE(b.linearTransition);
    EXPECT_FLOAT_EQ(b.transitionSeconds, 30.0f);
    EXPECT_FALSE(a.hidden);
    EXPECT_TRUE(b.hidden);
    EXPECT_STREQ(b.name, "Pass - 1");
}

TEST_F(GeneratorsTest, SameNameReplacesAndAFullSetRefusesWithAMessage) {
    ASSERT_TRUE(createOrbit(orbit("Shared")));
    ASSERT_TRUE(createFlyBy(flyBy("Shared")));
    const int index = findOrAddCategory("Shared", false);
    EXPECT_EQ(categoryCount(), 2);
    EXPECT_EQ(categoryAt(index)->cameraCount, 2) << "the orbit's 37 cameras are gone";
    EXPECT_EQ(categoryAt(index)->cameras[2].name[0], '\0');

    for (int i = categoryCount(); i < kMaxCategories; ++i)
        ASSERT_TRUE(createFlyBy(flyBy(("Fill " + std::to_string(i)).c_str())));
    ASSERT_EQ(categoryCount(), 20);
    const size_t boxes = queuedMessageBoxes().size();
    EXPECT_FALSE(createOrbit(orbit("Twenty-first")));
    EXPECT_EQ(categoryCount(), 20);
    EXPECT_EQ(findOrAddCategory("Twenty-first", false), -1);
    ASSERT_EQ(queuedMessageBoxes().size(), boxes + 1);
    EXPECT_EQ(queuedMessageBoxes().back().title, "ERROR");
    EXPECT_EQ(queuedMessageBoxes().back().text, "There are no more categories available");

    EXPECT_FALSE(createOrbit(orbit(""))) << "an empty name names no live category";
}

}  // namespace
