#pragma once

#import <AppKit/AppKit.h>

#import "EditHistory.h"
#import "EffectListener.h"
#import "HostButton.h"
#import "HostContentView.h"
#import "RecentFiles.h"
#import "WaveformView.h"
#import "host/effect/HostMusic.h"
#import "host/effect/TarvelEffect.h"
#import "host/loader/EditorPane.h"

#include <memory>
#include <optional>
#include <string>

/// The window of tarvel-host with all it shows: what the recording is, its waveform and what the
/// effect makes of it, and the editor of the effect that holds it. [main]
///
/// Whatever the user changes shows at once, is kept for Undo, and is written beside the recording
/// a moment later and before the window lets go of it.
@interface HostWindow
    : NSObject <EditorPaneDelegate, HostContentViewDelegate, WaveformViewDelegate> {
@private
    NSWindow* m_window;   // owned
    NSTextField* m_title; // owned by the window, like the next eight
    NSTextField* m_details;
    NSTextField* m_position;
    NSTextField* m_result;
    HostButton* m_undo;
    HostButton* m_redo;
    HostButton* m_export;
    WaveformView* m_waveform;
    EditorPane* m_pane;
    host::HostMusic m_music; // must outlive the effect
    std::unique_ptr<TarvelEffect> m_effect;
    std::unique_ptr<host::EffectListener> m_listener; // ends before the effect
    std::shared_ptr<const host::TrimEngine> m_engine;
    std::optional<host::TrimSettings> m_planned; // what m_plan was made from
    host::TrimPlan m_plan;
    host::EditHistory m_history;
    host::RecentFiles* m_recentFiles; // not owned; null: not kept
    NSData* m_savedSettings;          // owned; what the file beside the recording holds
}

/// Makes the window with an effect that has no recording yet, and opens its editor.
/// @param bundle   Path of the editor's bundle.
/// @param factory  Name of the view factory class in it.
- (id)initWithBundle:(const std::string&)bundle factory:(const std::string&)factory;

/// Has every recording with a file be put into that list, which must outlive the window.
- (void)setRecentFiles:(host::RecentFiles*)files;

/// Hands the recording to the effect and shows it with the settings that lie beside its file; the
/// editor is opened anew. Settings that cannot be read are told of in the window.
/// @return  The problem with the settings as one sentence, or an empty text.
- (std::string)showRecording:(std::shared_ptr<const host::Recording>)recording;

/// Reads a file and shows it. Returns the problem or the warning as one sentence, or an empty text.
- (std::string)openFile:(const std::string&)path;

/// Opens a file and shows a problem in a panel.
- (void)openFileForUser:(const std::string&)path;

/// Sets what the effect may ask its host for; the editor is opened anew, because it asks only then.
- (void)setMusic:(const host::HostMusic&)music;
- (const host::HostMusic&)music;

/// Writes settings that have changed since they were read or written.
- (void)saveSettings;

/// Actions of menus and buttons. Undo and Redo have names of their own: a field that is edited
/// would answer the usual ones.
- (void)openDocument:(id)sender;
- (void)exportDocument:(id)sender;
- (void)undoEdit:(id)sender;
- (void)redoEdit:(id)sender;
- (void)editMusic:(id)sender;

/// Titles that tell what would be undone, and whether an action can be carried out now.
- (BOOL)validateMenuItem:(NSMenuItem*)item;

- (NSWindow*)window;
- (EditorPane*)editorPane;
- (TarvelEffect*)effect;
- (WaveformView*)waveform;
- (const host::TrimPlan&)plan;

/// What the line below the waveform says: the position under the pointer or a message, and what is
/// kept.
- (NSString*)positionText;
- (NSString*)resultText;

/// Writes the settings, closes the editor, then gives up the effect. Harmless when repeated;
/// nothing else may be asked of the window afterwards.
- (void)close;

@end
