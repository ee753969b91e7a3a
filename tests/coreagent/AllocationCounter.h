// How much the calling thread has allocated with operator new since it began.
#pragma once

long CountOfAllocations();
