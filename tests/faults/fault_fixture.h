#pragma once

// The store and the agent that the sweeps work on.

#include <cstdlib>
#include <optional>
#include <string_view>

#include "localstore/recorder.h"
#include "tests/faults/operation.h"
#include "tests/unit/timezone/zone_registry.h"

/// True for a sweep of every point with every code, as against some points with the first one of each kind.
inline bool IsFullSweep() {
    const char* const wanted = std::getenv("ZEB_FAULTS");
    return wanted != nullptr && std::string_view(wanted) == "full";
}

class FaultTest : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        m_objectsWithoutSession = localstore::recorder::LiveObjects();
        MakeFolder(L"Work\\Mail\\Contacts\\Below");
        MakeFolder(L"Work\\Mail\\Calendar\\Below");
        m_zones.AddZone(L"First", {});
        m_zones.AddZone(L"Second", {-60, 0, -60, {}, {}});
        LogOn();
        m_state.emplace(m_root);
        // What is recorded is allocated too, and not by the agent.
        localstore::recorder::Record(false);
    }
    void TearDown() override {
        localstore::recorder::Record(true);
        g_MAPIObject.m_arrTimeZones.RemoveAll();
        StoreTest::TearDown();
        m_state.reset();
    }
    StoreState& State() { return *m_state; }
    [[nodiscard]] long ObjectsWithoutSession() const { return m_objectsWithoutSession; }

  private:
    // Few zones, so that each of their keys can be failed.
    ZoneRegistry m_zones;
    std::optional<StoreState> m_state;
    long m_objectsWithoutSession = 0;
};
