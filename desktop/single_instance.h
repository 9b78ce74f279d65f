#pragma once

#include "support/owners.h"

/// Keeps a second desktop program out while it exists: the agent has one session, which a second logon would
/// take away.
class SingleInstance {
  public:
    /// Throws a Failure if another one is at work.
    SingleInstance();

  private:
    Handle m_mark;
};
