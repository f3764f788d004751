#pragma once

#include "viewer/ViewerControl.h"

class GlViewSettings;

// Commands that change how the view looks at the scene, and nothing of the scene.

/// Turns the view: inside the ring freely, on its handles about one axis, outside it rolls.
class ZEL_API C3DRotateCommand : public C3DViewerControl {
public:
    C3DRotateCommand();

protected:
    void OnDrag(unsigned int state, const CPoint& point) override;
};

class ZEL_API C3DMoveCommand : public C3DViewerControl {
public:
    C3DMoveCommand();

protected:
    void OnDrag(unsigned int state, const CPoint& point) override;
};

class ZEL_API C3DZoomCommand : public C3DViewerControl {
public:
    C3DZoomCommand();

protected:
    void OnDrag(unsigned int state, const CPoint& point) override;
};

/// One step of the view by a key; declined without a view.
class ZEL_API C3DViewStepCommand : public C3DCommand {
public:
    CommandResult OnApplyCommand() override;
    using C3DCommand::OnApplyCommand;

protected:
    explicit C3DViewStepCommand(unsigned int id) : C3DCommand(id) {}
    /// Fills in what changes; `settings` has matrix and camera of the view, and GLSET_UPDATE.
    virtual void Step(GlViewSettings& settings) const = 0;
};

/// By 10 degrees about an axis of the scene.
class ZEL_API C3DRotateStepCommand : public C3DViewStepCommand {
protected:
    C3DRotateStepCommand(unsigned int id, const C3DTVector<float>& axis, double sense)
        : C3DViewStepCommand(id), m_axis(axis), m_sense(sense)
    {
    }
    void Step(GlViewSettings& settings) const override;

private:
    const C3DTVector<float> m_axis;
    const double m_sense;
};

class ZEL_API C3DRotateLeftCommand : public C3DRotateStepCommand {
public:
    C3DRotateLeftCommand();
};
class ZEL_API C3DRotateRightCommand : public C3DRotateStepCommand {
public:
    C3DRotateRightCommand();
};
class ZEL_API C3DRotateUpCommand : public C3DRotateStepCommand {
public:
    C3DRotateUpCommand();
};
class ZEL_API C3DRotateBottomCommand : public C3DRotateStepCommand {
public:
    C3DRotateBottomCommand();
};

/// By a twentieth of the scene's size along an axis of the screen.
class ZEL_API C3DMoveStepCommand : public C3DViewStepCommand {
protected:
    C3DMoveStepCommand(unsigned int id, int row, float sense) : C3DViewStepCommand(id), m_row(row), m_sense(sense) {}
    void Step(GlViewSettings& settings) const override;

private:
    const int m_row;
    const float m_sense;
};

class ZEL_API C3DMoveLeftCommand : public C3DMoveStepCommand {
public:
    C3DMoveLeftCommand();
};
class ZEL_API C3DMoveRightCommand : public C3DMoveStepCommand {
public:
    C3DMoveRightCommand();
};
class ZEL_API C3DMoveUpCommand : public C3DMoveStepCommand {
public:
    C3DMoveUpCommand();
};
class ZEL_API C3DMoveBottomCommand : public C3DMoveStepCommand {
public:
    C3DMoveBottomCommand();
};

/// The eye's distance and the camera's zoom at once, so that a change of projection keeps the picture near to what it was.
class ZEL_API C3DZoomStepCommand : public C3DViewStepCommand {
protected:
    C3DZoomStepCommand(unsigned int id, double distance, double zoom) : C3DViewStepCommand(id), m_distance(distance), m_zoom(zoom) {}
    void Step(GlViewSettings& settings) const override;

private:
    const double m_distance, m_zoom;    ///< factors
};

class ZEL_API C3DZoomInCommand : public C3DZoomStepCommand {
public:
    C3DZoomInCommand();
};
class ZEL_API C3DZoomOutCommand : public C3DZoomStepCommand {
public:
    C3DZoomOutCommand();
};

/// Fits the scene; an orthographic view gets the zoom at which the scene fits.
class ZEL_API C3DResetZoomCommand : public C3DViewStepCommand {
public:
    C3DResetZoomCommand();

protected:
    void Step(GlViewSettings& settings) const override;
};

/// Fits what is selected, or the scene.
class ZEL_API C3DZoomSelectionCommand : public C3DViewStepCommand {
public:
    C3DZoomSelectionCommand();

protected:
    void Step(GlViewSettings& settings) const override;
};
