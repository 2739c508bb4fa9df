#pragma once

#include <atomic>
#include <string>

/// The system's side of a folder watch: a queue that collects changes to one folder.
///
///     field of the watch   macOS                      Linux
///     queue                descriptor of a kqueue     descriptor of an eventfd
///     folder               descriptor of the folder   number of the watch with inotify

enum class FolderEvent { TimeOut, Change, Failure };

/// Opens a queue for the folder. Both fields stay -1 when the system refuses.
/// @param path  The folder's path in bytes.
void _openFolderQueue(const std::string& path, std::atomic<int>& queue, std::atomic<int>& folder);

/// Waits for a change. What changed while nobody waited is reported as one change.
/// @param cycleMs  Longest wait; 0 waits 1 ms.
FolderEvent _waitForFolderEvent(int queue, int cycleMs);

/// Ends a wait on another thread, now or as soon as it begins.
void _wakeFolderQueue(std::atomic<int>& queue, std::atomic<int>& folder);

/// Closes what is open and sets both fields to -1.
void _closeFolderQueue(std::atomic<int>& queue, std::atomic<int>& folder);

/// True while the path of an open queue leads to the folder that it was opened for.
bool _pathLeadsToQueue(const std::string& path, int queue, int folder);
