#pragma once

#include <functional>

#include <QString>

#include <windows/WindowSystem.h>

/// A question that is open as long as the object lives, for scripts: what it asks, and how to answer it in the user's place.
class COpenQuestion {
public:
    /// False for an answer that the question does not take.
    using Answer = std::function<bool(const QString& answer)>;

    COpenQuestion(CShownQuestion shown, Answer answer);
    ~COpenQuestion();
    COpenQuestion(const COpenQuestion&) = delete;
    COpenQuestion& operator=(const COpenQuestion&) = delete;

    static std::vector<CShownQuestion> GetAll();
    /// To the innermost one.
    static bool AnswerLast(const QString& answer);

private:
    CShownQuestion m_shown;
    Answer m_answer;
};
