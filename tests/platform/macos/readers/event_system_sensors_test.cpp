// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include <dlfcn.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "extras/thermal.hpp"
#include "platform/macos/readers/fake_event_system.hpp"
#include "platform/macos/readers/mac_extras.hpp"

namespace tarn::macos {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string libraryWithout(const std::string& function) {
  return std::string(TARN_EVENT_LIBRARIES "/event_system_without_") + function + ".so";
}

class EventSystemSensorsTest : public ::testing::Test {
 protected:
  EventSystemSensorsTest() { system_.frameworks = &frameworks_; }

  /// The readings through the fake library that lacks `function`; "nothing" is the complete library.
  std::vector<double> readingsWithout(const std::string& function) {
    const std::string path = libraryWithout(function);
    void* library = ::dlopen(path.c_str(), RTLD_NOW);
    if (library == nullptr) throw std::runtime_error(::dlerror());
    reinterpret_cast<void (*)(FakeEventSystem*)>(::dlsym(library, "prescribe"))(&system_);
    const EventSystemFunctions functions = lookUpEventSystem(path);
    ::dlclose(library);  // lookUpEventSystem() keeps the library open
    return EventSystemSensors(functions, FakeFrameworks::functions()).readings();
  }

  std::vector<double> readings() { return readingsWithout("nothing"); }

  /// A reading creates a client, a dictionary, an array of services, and an event for each sensor that has
  /// one.
  void expectAllReleased(int created) const {
    EXPECT_EQ(frameworks_.created, created);
    EXPECT_EQ(frameworks_.released, created);
  }

  FakeFrameworks frameworks_;
  FakeEventSystem system_;
};

TEST_F(EventSystemSensorsTest, ReadsEachSensorOnceAndReleasesAllObjects) {
  system_.sensors = {{.celsius = 40}, {.celsius = 50}, {.celsius = 0}};
  EXPECT_THAT(readings(), ElementsAre(40, 50, 0));
  // 15: event type temperature. 983040: 15 << 16, its field.
  EXPECT_THAT(system_.calls, ElementsAre("create", "setMatching", "copyServices",  //
                                         "copyEvent 15 0 0", "getFloat 983040",    //
                                         "copyEvent 15 0 0", "getFloat 983040",    //
                                         "copyEvent 15 0 0", "getFloat 983040"));
  expectAllReleased(3 + 3);
}

TEST_F(EventSystemSensorsTest, MatchesTemperatureSensorsOnTheVendorDefinedUsagePage) {
  readings();
  EXPECT_THAT(frameworks_.lastDictionary,
              ElementsAre(std::pair("PrimaryUsagePage", 0xFF00), std::pair("PrimaryUsage", 5)));
}

TEST_F(EventSystemSensorsTest, SkipsASensorWithoutAnEvent) {
  system_.sensors = {{.hasEvent = false}, {.celsius = 50}, {.hasEvent = false}};
  EXPECT_THAT(readings(), ElementsAre(50));
  expectAllReleased(3 + 1);
}

TEST_F(EventSystemSensorsTest, IsEmptyWithoutAClient) {
  system_.refusesClients = true;
  EXPECT_THAT(readings(), IsEmpty());
  EXPECT_THAT(system_.calls, ElementsAre("create"));
  expectAllReleased(0);
}

TEST_F(EventSystemSensorsTest, IsEmptyWithoutServices) {
  EXPECT_THAT(readings(), IsEmpty());
  expectAllReleased(3);
  system_.givesServicesOfAnotherKind = true;
  EXPECT_THAT(readings(), IsEmpty());
  expectAllReleased(3 + 3);
  system_.hasNoServices = true;
  EXPECT_THAT(readings(), IsEmpty());
  expectAllReleased(3 + 3 + 2);
}

TEST_F(EventSystemSensorsTest, CreatesANewClientForEachReading) {
  system_.sensors = {{.celsius = 40}};
  readings();
  system_.sensors[0].celsius = 41;
  EXPECT_THAT(readings(), ElementsAre(41));
  EXPECT_EQ(std::count(system_.calls.begin(), system_.calls.end(), "create"), 2);
  expectAllReleased(2 * 4);
}

TEST_F(EventSystemSensorsTest, ReturnsImplausibleValuesThatThermalSensorsDrops) {
  system_.sensors = {{.celsius = 40}, {.celsius = 50}, {.celsius = 0}, {.celsius = 120}, {.celsius = -62}};
  const ThermalSensors thermal([this] { return readings(); });
  EXPECT_EQ(thermal.averageCelsius(), 45);
  expectAllReleased(3 + 5);
}

TEST_F(EventSystemSensorsTest, MakesNoCallWhenOneFunctionIsMissing) {
  system_.sensors = {{.celsius = 40}};
  for (const auto* function : {"create", "setMatching", "copyServices", "copyEvent", "getFloat"}) {
    EXPECT_FALSE(lookUpEventSystem(libraryWithout(function)).areComplete()) << function;
    EXPECT_THAT(readingsWithout(function), IsEmpty()) << function;
    EXPECT_THAT(system_.calls, IsEmpty()) << function;
  }
  expectAllReleased(0);
}

TEST(EventSystemLookUp, FindsAllFunctionsExceptTheMissingOne) {
  const EventSystemFunctions functions = lookUpEventSystem(libraryWithout("copyEvent"));
  EXPECT_TRUE(functions.create && functions.setMatching && functions.copyServices && functions.getFloat);
  EXPECT_EQ(functions.copyEvent, nullptr);
  EXPECT_TRUE(lookUpEventSystem(libraryWithout("nothing")).areComplete());
}

TEST(EventSystemLookUp, ReturnsNullFunctionsWhenTheLibraryCannotBeOpened) {
  for (const std::string path : {"/nowhere", "/etc/hostname", ""}) {
    const EventSystemFunctions functions = lookUpEventSystem(path);
    EXPECT_TRUE(!functions.create && !functions.setMatching && !functions.copyServices &&
                !functions.copyEvent && !functions.getFloat)
        << path;
  }
}

TEST(EventSystemLookUp, NeverClosesTheLibrary) {
  const std::string path = libraryWithout("getFloat");
  lookUpEventSystem(path);
  void* const library = ::dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
  ASSERT_NE(library, nullptr) << "the library is no longer loaded";
  ::dlclose(library);
}

TEST(EventSystemLookUp, UsesTheIOKitFramework) {
  EXPECT_STREQ(eventSystemLibrary, "/System/Library/Frameworks/IOKit.framework/IOKit");
}

}  // namespace
}  // namespace tarn::macos
