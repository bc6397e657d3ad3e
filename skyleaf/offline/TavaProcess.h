#pragma once

/** Starts the cloud service process when it does not run. User-interface thread. */
void runTavaProcessIfNotExists();
