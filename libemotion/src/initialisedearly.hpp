#pragma once

/// For the definition of process-wide objects: initialised before every ordinary one, so that a static initialiser of
/// any unit may use them, in any order of linking.
#define SKEIGIOT_INITIALISED_EARLY __attribute__((init_priority(200)))
