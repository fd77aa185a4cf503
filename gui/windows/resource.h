#pragma once

// Also read by the resource compiler, so plain macros. The lowest number is the icon that Explorer shows.
#define TARN_PROGRAM_ICON 1
