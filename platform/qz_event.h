#pragma once

// qz_event: identifiers of named events.

#include <platform/qz_event/event.h>
