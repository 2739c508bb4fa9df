#pragma once

#import <AppKit/AppKit.h>
#import <AudioUnit/AudioUnit.h>

@class EditorPane;

@protocol EditorPaneDelegate
/// The pane has a new frame size because its editor has; the window may follow.
- (void)editorPaneDidResize:(EditorPane*)pane;
@end

/// The place in a host's window that holds an effect's editor. It is always as large as the
/// editor; while there is none it shows why. [main]
@interface EditorPane : NSView {
@private
    NSView* m_editor;                  // owned
    NSString* m_problem;               // owned
    id<EditorPaneDelegate> m_delegate; // not owned
}

- (void)setDelegate:(id<EditorPaneDelegate>)delegate;

/// Opens the editor of `unit` in place of what is shown. Returns NO when there is none: the pane
/// then keeps its size and shows the reason.
- (BOOL)openEditorForUnit:(AudioUnit)unit;

/// Takes the editor out of the window and gives it up; harmless without one. The effect should
/// outlive the editor but need not.
- (void)closeEditor;

/// The open editor, nil without one.
- (NSView*)editor;

/// Why there is no editor; nil while there is one and before the first try.
- (NSString*)problem;

@end
