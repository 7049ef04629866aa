#pragma once

namespace quillon {

class Session;

// What the main window does when it is created: makes sure the ini folder
// exists, refuses to run without the settings file and shows the backup
// warning once. False when the program must end.
bool StartUp(Session& session);

}  // namespace quillon
