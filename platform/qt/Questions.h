#pragma once

#include <functional>

#include <QString>

#include <windows/WindowSystem.h>

class QWidget;

/// A question that is open as long as the object lives, for scripts: what it asks, and how to answer it in the user's place.
class COpenQuestion {
public:
    /// False for an answer that the question does not take.
    using Answer = std::function<bool(const QString& answer)>;

    /// `window`: that asks; nothing is asked any more once it has closed.
    COpenQuestion(const QWidget& window, CShownQuestion shown, Answer answer);
    ~COpenQuestion();
    COpenQuestion(const COpenQuestion&) = delete;
    COpenQuestion& operator=(const COpenQuestion&) = delete;

    static std::vector<CShownQuestion> GetAll();
    /// To the innermost one.
    static bool AnswerLast(const QString& answer);

private:
    const QWidget& m_window;
    CShownQuestion m_shown;
    Answer m_answer;
};
