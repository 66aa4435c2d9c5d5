; The installer of the Windows program: for one user, without an administrator, with an entry in the
; start menu and a removal. It holds the 64-bit and the 32-bit program and installs the one that fits.
; makensis -DSTAGE=FOLDER -DOUTPUT=FILE -DVERSION=NUMBER quill.nsi
Unicode true
!include "x64.nsh"
!include "WinVer.nsh"
!include "FileFunc.nsh"

!define REMOVAL "Software\Microsoft\Windows\CurrentVersion\Uninstall\Quill"

Name "Quill"
OutFile "${OUTPUT}"
InstallDir "$LOCALAPPDATA\Programs\Quill"
InstallDirRegKey HKCU "${REMOVAL}" "InstallLocation" ; a later version goes to the same folder
RequestExecutionLevel user
ManifestDPIAware true
SetCompressor /SOLID lzma
SetDateSave off
Icon "${STAGE}/quill.ico"
UninstallIcon "${STAGE}/quill.ico"
VIProductVersion "${VERSION}.0.0"
VIAddVersionKey "ProductName" "Quill"
VIAddVersionKey "FileDescription" "Quill Telnet, installer"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "LegalCopyright" "The Quill authors. MIT License."

Page directory
Page instfiles
UninstPage uninstConfirm
UninstPage instfiles

Section
    SetShellVarContext current
    SetOutPath "$INSTDIR"
    StrCpy $0 32
    ${If} ${IsNativeAMD64}
        StrCpy $0 64
    ${ElseIf} ${IsNativeARM64}
    ${AndIf} ${AtLeastBuild} 22000 ; Windows 10 for ARM64 runs 32-bit programs only
        StrCpy $0 64
    ${EndIf}
    ClearErrors
    ${If} $0 = 64
        File "/oname=quill.exe" "${STAGE}/quill64.exe"
    ${Else}
        File "/oname=quill.exe" "${STAGE}/quill32.exe"
    ${EndIf}
    File "${STAGE}/telnet.htm" "${STAGE}/quill.ti" "${STAGE}/LICENSE.txt"
    WriteUninstaller "$INSTDIR\remove.exe"
    ${If} ${Errors}
        SetErrorLevel 2
        Abort "Quill could not be written. If it runs, close it and start again."
    ${EndIf}
    CreateShortcut "$SMPROGRAMS\Quill.lnk" "$INSTDIR\quill.exe"
    WriteRegStr HKCU "${REMOVAL}" "DisplayName" "Quill"
    WriteRegStr HKCU "${REMOVAL}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKCU "${REMOVAL}" "DisplayIcon" "$INSTDIR\quill.exe"
    WriteRegStr HKCU "${REMOVAL}" "Publisher" "The Quill authors"
    WriteRegStr HKCU "${REMOVAL}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKCU "${REMOVAL}" "UninstallString" '"$INSTDIR\remove.exe"'
    WriteRegStr HKCU "${REMOVAL}" "QuietUninstallString" '"$INSTDIR\remove.exe" /S'
    WriteRegDWORD HKCU "${REMOVAL}" "NoModify" 1
    WriteRegDWORD HKCU "${REMOVAL}" "NoRepair" 1
    ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
    WriteRegDWORD HKCU "${REMOVAL}" "EstimatedSize" $0
SectionEnd

; Sets $1 to the name of a file in the folder that is not the installer's, or to nothing.
Function un.FindOtherFile
    FindFirst $2 $1 "$INSTDIR\*.*"
    ${DoWhile} $1 != ""
        ${If} $1 != "."
        ${AndIf} $1 != ".."
        ${AndIf} $1 != "quill.exe"
        ${AndIf} $1 != "telnet.htm"
        ${AndIf} $1 != "quill.ti"
        ${AndIf} $1 != "LICENSE.txt"
        ${AndIf} $1 != "remove.exe"
            ${ExitDo}
        ${EndIf}
        FindNext $2 $1
    ${Loop}
    FindClose $2
FunctionEnd

; The settings stay: they are the user's, and a later installation finds them again.
Section "Uninstall"
    SetShellVarContext current
    ClearErrors
    Delete "$INSTDIR\quill.exe"
    ${If} ${Errors}
        SetErrorLevel 2
        Abort "Quill could not be removed. If it runs, close it and start again."
    ${EndIf}
    Delete "$INSTDIR\telnet.htm"
    Delete "$INSTDIR\quill.ti"
    Delete "$INSTDIR\LICENSE.txt"
    Delete "$INSTDIR\remove.exe"
    Delete "$SMPROGRAMS\Quill.lnk"
    DeleteRegKey HKCU "${REMOVAL}"
    ; A deleted file is in its folder until the last program closes it: remove.exe may still run. A file
    ; of the user's stays, and so does the folder.
    StrCpy $0 300 ; tries
    ${DoWhile} $0 > 0
        RMDir "$INSTDIR"
        Call un.FindOtherFile
        ${If} $1 != ""
        ${OrIf} $EXEDIR == $INSTDIR
        ${OrIfNot} ${FileExists} "$INSTDIR\*.*"
            ${ExitDo}
        ${EndIf}
        Sleep 100
        IntOp $0 $0 - 1
    ${Loop}
SectionEnd
