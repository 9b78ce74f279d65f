#pragma once

/// What this process holds.
struct Living {
    /// Allocations of the program.
    long allocations;
    long handles;
    /// Blocks in all heaps, those of the platform's libraries among them, with their objects and texts. What
    /// the document service keeps of each header that it makes is taken off: it loses it by itself.
    long blocks;
};

/// Makes the blocks countable, behind InstallPlatformFaults: texts that are let go must not be kept for later
/// ones, and what the document service loses is measured. False if the platform does not let them be counted.
bool PrepareToCountLiving();

/// All that lives now.
Living WhatLives();
