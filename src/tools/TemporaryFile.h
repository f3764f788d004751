#pragma once

#include <string>

/// A file that is written beside its target, which it then replaces in one step: nobody ever sees half a file.
///
/// Where the file system can do so the file has no name until then, so that nothing is left of it whatever ends the process. Elsewhere it
/// is called .zel-XXXXXX, and fileRemoveTemporaries takes it away.
class CTemporaryFile {
public:
    CTemporaryFile() = default;
    ~CTemporaryFile() { Drop(); }
    CTemporaryFile(const CTemporaryFile&) = delete;
    CTemporaryFile& operator=(const CTemporaryFile&) = delete;

    /// Opens an empty file for writing in the folder of `target`, with the permissions of new files, or with none for others when
    /// `isPrivate`. False, with errno set, when that cannot be done.
    bool Open(const std::string& target, bool isPrivate);
    bool IsOpen() const { return m_handle >= 0; }
    int GetHandle() const { return m_handle; }

    /// Gives the file its target's name, with `replace` over a file that is there, and closes it. The file is dropped, with false and errno
    /// set, when that cannot be done.
    bool PutInPlace(bool replace);
    void Drop();

private:
    bool OpenNamed(mode_t mode);
    bool GiveName();
    void ForgetName();

    int m_handle = -1;
    std::string m_target, m_name;    ///< m_name is empty while the file has none
    int m_entry = -1;                ///< of the list of names
};
