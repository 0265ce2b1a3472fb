// Unsaved edits on disk, so that a crash loses none. At the first edit after the image was read, opened or
// saved it is written whole; each gesture then adds a line with the bytes that it has changed. Each running
// program has a journal of its own in the program folder, held by a lock; one that nobody holds was left by a
// crash and waits to be recovered.
#pragma once

namespace zandrel {

/// Asks whether the edits of a run that crashed are to be recovered, if there are any, and gives them up if
/// not. True: `RecoverJournal` is to follow, once the start has come so far.
bool AskRecovery();

/// From here on edits are journalled.
void BeginJournal();

/// The image and its notes are in the journal as they are now. Runs after each gesture; whoever changes them
/// otherwise calls it. A failure is a line in the diagnostics log.
void WriteJournal();

/// The image was saved, replaced or given up: nothing of it needs to be recovered.
void RestartJournal();

/// The clean stop: nothing of this run's journal is left.
void EndJournal();

/// True if a run that crashed has left edits. The newest are the ones that are recovered or dropped; a
/// journal that can't be read is removed, with a line in the diagnostics log.
bool JournalWaits();

/// Puts them into the image, as an opened file, but unsaved. False: they fit no build, and were dropped.
bool RecoverJournal();

/// Gives them up; their image becomes a snapshot.
void DropJournal();

}  // namespace zandrel
