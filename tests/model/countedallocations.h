#pragma once

/// Number of blocks that this program has allocated with new so far.
long numAllocations();
