#pragma once

// Every command of a frame, each once.

#include "viewer/AnimationCommands.h"
#include "viewer/CameraCommands.h"
#include "viewer/DisplayCommands.h"
#include "viewer/FaceSelection.h"
#include "viewer/FileCommands.h"
#include "viewer/FrameViewer.h"
#include "viewer/HelpCommands.h"
#include "viewer/MergeCommands.h"
#include "viewer/NavigationCommands.h"
#include "viewer/PanelCommands.h"
#include "viewer/RecentFiles.h"
#include "viewer/SelectionCommands.h"
#include "viewer/SmoothingMenu.h"
#include "viewer/ViewAngle.h"

/// Outside of the set, whose name is that of all its commands.
template <class COMMAND> struct CHeldCommand {
    COMMAND command;
};

/// One object of each class, built in the order of the classes.
template <class... COMMANDS> class CCommandSet : CHeldCommand<COMMANDS>... {
public:
    /// Visits them in that order.
    template <class VISIT> void ForEach(VISIT visit) { (visit(CHeldCommand<COMMANDS>::command), ...); }
};

/// In the order in which they are registered, which is that of lists of commands.
struct C3DFrameViewer::Commands
    : CCommandSet<C3DFullScreenCommand, C3DDisplaySceneCommand, C3DShowObjectsCommand, C3DShowMaterialsCommand, C3DMoveCommand,
                  C3DMoveLeftCommand, C3DMoveRightCommand, C3DMoveUpCommand, C3DMoveBottomCommand, C3DZoomCommand, C3DZoomInCommand,
                  C3DZoomOutCommand, C3DRotateCommand, C3DSelectCommand, C3DSelectAll, C3DSelectNone, C3DSelectInvert, C3DReselect,
                  C3DShowAll, C3DShowHideSel, C3DShowSelection, C3DReshow, C3DSelectFacesCommand, C3DRotateLeftCommand,
                  C3DRotateRightCommand, C3DRotateUpCommand, C3DRotateBottomCommand, C3DViewTopCommand, C3DViewBottomCommand,
                  C3DViewLeftCommand, C3DViewRightCommand, C3DViewFrontCommand, C3DViewBackCommand, C3DViewLTFCommand, C3DViewRTFCommand,
                  C3DViewLBFCommand, C3DViewRBFCommand, C3DViewLTKCommand, C3DViewRTKCommand, C3DViewLBKCommand, C3DViewRBKCommand,
                  C3DViewAngleCommand, C3DOpeningViewPrefsCommand, C3DZoomSelectionCommand, C3DResetZoomCommand, C3DViewCameraCommand,
                  C3DNextCameraCommand, C3DPrevCameraCommand, C3DCreateCameraCommand, C3DChangeProjectionModeCommand,
                  C3DWireframeModeCommand, C3DFlatModeCommand, C3DSmoothModeCommand, C3DWireFlatModeCommand, C3DWireSmoothModeCommand,
                  C3DDefaultBrightnessCommand, C3DLessBrightnessCommand, C3DMoreBrightnessCommand, C3DTextureCommand, C3DVCCommand,
                  C3DSpecNormalCommand, C3DTexVCCommand, C3DPrefsCommand, C3DPlayCommand, C3DPrevFrameCommand, C3DNextFrameCommand,
                  C3DPrevKeyframeCommand, C3DNextKeyframeCommand, C3DCloseViewer, C3DSaveAs, C3DOpen, C3DMerge, C3DMergeFolder, C3DHelp,
                  C3DHelpOn, C3DDeleteNodeCommand,
                  // Habits of users, behind all that others count on.
                  C3DRecentCommand, C3DNextFile, C3DPrevFile> {};
