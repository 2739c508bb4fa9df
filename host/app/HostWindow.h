#pragma once

#import <AppKit/AppKit.h>

#import "WaveformView.h"
#import "host/effect/HostMusic.h"
#import "host/effect/TarvelEffect.h"
#import "host/loader/EditorPane.h"

#include <memory>
#include <string>

/// The window of tarvel-host with all it shows: what the recording is, its waveform, and the
/// editor of the effect that holds it. [main]
@interface HostWindow : NSObject <EditorPaneDelegate> {
@private
    NSWindow* m_window;   // owned
    NSTextField* m_title; // owned by the window, like the next three
    NSTextField* m_details;
    WaveformView* m_waveform;
    EditorPane* m_pane;
    host::HostMusic m_music; // must outlive the effect
    std::unique_ptr<TarvelEffect> m_effect;
}

/// Makes the window with an effect that has no recording yet, and opens its editor.
/// @param bundle   Path of the editor's bundle.
/// @param factory  Name of the view factory class in it.
- (id)initWithBundle:(const std::string&)bundle factory:(const std::string&)factory;

/// Hands the recording to the effect and shows it; the editor is opened anew.
- (void)showRecording:(std::shared_ptr<const host::Recording>)recording;

/// Reads a file and shows it. Returns the problem or the warning as one sentence, or an empty text.
- (std::string)openFile:(const std::string&)path;

/// Asks for a file and opens it; a problem is shown in a panel.
- (void)openDocument:(id)sender;

- (NSWindow*)window;
- (EditorPane*)editorPane;
- (TarvelEffect*)effect;

/// Closes the editor, then gives up the effect. Harmless when repeated; nothing else may be asked
/// of the window afterwards.
- (void)close;

@end
