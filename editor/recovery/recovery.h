// SPDX-License-Identifier: GPL-3.0-or-later
// Recovery: while the mesh is altered it is saved now and then to a file in the state folder, which
// the next start offers if this editor did not come to a good end. Without a state folder all of
// this does nothing.
#pragma once

namespace polyfab {

/// How often resting saves, in seconds. 0: every time, before anything else happens.
void setRecoverySeconds(int seconds);

/// Nothing has been saved yet. To be called when OB has been made.
void startRecovery();

enum class Recovered { nothing, mesh };

/// Asks whether to bring back what editors that live no more have left, the newest first, and does
/// so. OB must be empty, and nothing read yet.
[[nodiscard]] Recovered offerRecovery();

/// Saves in the background, if the last time is long enough ago: the user does nothing now. Says so
/// once when a file can't be written.
void saveAtRest();

/// Saves before something that may take long, or never come back, and waits until that is done.
void saveBeforeLongWork();

/// Saves before the process ends. What is altered then stays when the window goes, even if this
/// fails and there is only what was saved before. `atWork`: a command runs, so that the mesh may be
/// in between; the newest step of the history is saved then, if there are any.
void saveAtSessionEnd(bool atWork);

/// Whether the last thing that happened is that the session ended and all was saved: the window may
/// then go without a question.
[[nodiscard]] bool sessionIsEnding();

/// To be called with what the user does: an end of the session that was announced did not come.
void noteUser();

/// Nothing needs to be brought back any more: the file goes.
void dropRecovery();

/// The window goes. The file goes too, unless the session ends.
void endRecovery();

} // namespace polyfab
