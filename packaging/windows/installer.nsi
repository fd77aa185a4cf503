; The installer of Tarn Service for 64-bit Windows, made by scripts/package.
;
;   /S             asks nothing and shows nothing
;   /D=FOLDER      installs there (last argument, no quotes)
;   /SIMULATED=1   installs the simulated computer instead of waiting for the port library
;
; Exit codes: 0 done, 1 cancelled, 2 failed, 3 installed but the service did not start.

!include LogicLib.nsh
!include FileFunc.nsh
!include Sections.nsh
!include x64.nsh
!include service.nsh
!include processes.nsh
!include program_files.nsh ; made by scripts/package

Target amd64-unicode
Name "Tarn Service"
BrandingText "Tarn Service ${VERSION}"
OutFile "${OUTPUT}"
InstallDir "$PROGRAMFILES64\Tarn Service"
RequestExecutionLevel admin
SetCompressor /SOLID lzma
SetDateSave off ; reproducible: the same sources give the same bytes
ShowInstDetails show
ShowUninstDetails show
!ifdef ICON
    Icon "${ICON}"
    UninstallIcon "${ICON}"
!endif

VIProductVersion "${VERSION}.0.0"
VIAddVersionKey ProductName "Tarn Service"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey FileDescription "Installer of Tarn Service"
VIAddVersionKey LegalCopyright ""

!define PRODUCT_KEY "Software\Tarn Service"
!define EVENT_SOURCE_KEY "System\CurrentControlSet\Services\EventLog\Application\Tarn Service"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Tarn Service"
!define PORT_LIBRARY "$INSTDIR\function\inpoutx64.dll"

!include recovery.nsh
!include replacement.nsh

Page components
Page directory
Page instfiles
UninstPage uninstConfirm
UninstPage instfiles

; Sets $0 to 1 when the port library in place is the simulated computer that an installer has put there, else
; to 0. A library that has replaced it since then has another file time.
Function IsLibrarySimulated
    StrCpy $0 0
    ${IfNot} ${FileExists} "${PORT_LIBRARY}"
        Return
    ${EndIf}
    GetFileTime "${PORT_LIBRARY}" $1 $2
    ReadRegStr $3 HKLM "${PRODUCT_KEY}" SimulatedLibraryTime
    ${If} $3 == "$1 $2"
        StrCpy $0 1
    ${EndIf}
FunctionEnd

!macro RefuseDuringFlash
    ${CountFlashingTools} $0
    ${If} $0 <> 0
        SetErrorLevel 2
        Abort "${FLASH_RUNS}"
    ${EndIf}
!macroend

!macro RefuseUnlessUnpacked
    ${If} ${Errors}
        SetOutPath "$INSTDIR"
        RMDir /r "${NEW_FILES}"
        SetErrorLevel 2
        Abort "The files could not be unpacked. Nothing has been changed."
    ${EndIf}
!macroend

Section "Tarn Service" SectionService
    SectionIn RO
    !insertmacro RefuseDuringFlash
    StrCpy $SimulatedComputerIsNew 1 ; an installer that was cut off may have moved these files too
    Call TakeAllBack
    StrCpy $SimulatedComputerIsNew 0
    ${If} $NotTakenBack != ""
        SetErrorLevel 2
        Abort "$NotTakenBack, which an earlier installer has moved aside, cannot be put back: it is in use."
    ${EndIf}
    DetailPrint "Unpacking"
    ClearErrors
    ${UnpackProgramFiles} "${NEW_FILES}"
    WriteUninstaller "${NEW_FILES}\uninstall.exe"
    !insertmacro RefuseUnlessUnpacked
SectionEnd

Section /o "Simulated computer" SectionSimulated
    Call IsLibrarySimulated
    ${If} ${FileExists} "${PORT_LIBRARY}"
    ${AndIf} $0 = 0
        DetailPrint "The port library in place is kept: it is not a simulated computer"
    ${Else}
        ClearErrors
        SetOutPath "${NEW_FILES}\function"
        File "${STAGE}/simulated/function/inpoutx64.dll"
        SetOutPath "${NEW_FILES}"
        File "${STAGE}/simulated/tarnsim.exe"
        !insertmacro RefuseUnlessUnpacked
        StrCpy $SimulatedComputerIsNew 1
    ${EndIf}
SectionEnd

Section # the new files take the place of the old ones when all have been unpacked
    SetOutPath "$INSTDIR" ; the current folder could not be removed
    ${IsTarnServiceActive} $9
    ${StopTarnService}
    ${CountFlashingTools} $0 ; a client may have started an update before the service stopped
    ${If} $0 = 0
        ${CloseWindows}
        DetailPrint "Replacing the files"
        Call ReplaceFiles
        StrCpy $0 "$InTheWay cannot be replaced, it is in use. The installed version stays."
        ${If} $NotTakenBack != ""
            StrCpy $0 "$InTheWay cannot be replaced, and $NotTakenBack cannot be put back. Run the installer again."
        ${EndIf}
    ${Else}
        RMDir /r "${NEW_FILES}"
        StrCpy $InTheWay tool
        StrCpy $0 "${FLASH_RUNS}"
    ${EndIf}
    ${If} $InTheWay != ""
        ${If} $9 = 1
            ${StartTarnService} $1
        ${EndIf}
        SetErrorLevel 2
        Abort $0
    ${EndIf}
    ${If} $SimulatedComputerIsNew = 1
        GetFileTime "${PORT_LIBRARY}" $1 $2
        WriteRegStr HKLM "${PRODUCT_KEY}" SimulatedLibraryTime "$1 $2"
    ${EndIf}

    WriteRegStr HKLM "${PRODUCT_KEY}" Folder "$INSTDIR"
    WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayName "Tarn Service"
    WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayVersion "${VERSION}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayIcon "$INSTDIR\TarnService.exe"
    WriteRegStr HKLM "${UNINSTALL_KEY}" InstallLocation "$INSTDIR"
    WriteRegStr HKLM "${UNINSTALL_KEY}" UninstallString '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKLM "${UNINSTALL_KEY}" QuietUninstallString '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" EstimatedSize ${PROGRAM_SIZE_KB}
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" NoModify 1
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" NoRepair 1
SectionEnd

Section # registered and started when all files are in place
    DetailPrint "Registering the service"
    nsExec::ExecToLog '"$INSTDIR\TarnService.exe" -install'
    Pop $0
    ; With quotes, unlike what the program itself registers: the folder's name has blanks.
    ${SetTarnServiceProgram} '"$INSTDIR\TarnService.exe"' $0
    ${If} $0 = 0
        SetErrorLevel 2
        Abort "The service could not be registered"
    ${EndIf}
    ${SetRecovery}
    ; The program holds the sentences of its events; an update finds the same key.
    WriteRegExpandStr HKLM "${EVENT_SOURCE_KEY}" EventMessageFile "$INSTDIR\TarnService.exe"
    WriteRegDWORD HKLM "${EVENT_SOURCE_KEY}" TypesSupported 7 ; errors, warnings and information
    ${IfNot} ${FileExists} "${PORT_LIBRARY}"
        DetailPrint "Not started: copy the port library to ${PORT_LIBRARY}, then start Tarn Service"
        Return
    ${EndIf}
    DetailPrint "Starting the service"
    ${StartTarnService} $0
    ${If} $0 = 0
        DetailPrint "The service did not start; $INSTDIR\log and the event log may tell why"
        SetErrorLevel 3
    ${EndIf}
SectionEnd

Function .onInit
    ${IfNot} ${RunningX64}
        MessageBox MB_ICONSTOP "Tarn Service needs a 64-bit Windows." /SD IDOK
        SetErrorLevel 2
        Quit
    ${EndIf}
    SetRegView 64
    SetShellVarContext all
    ReadRegStr $0 HKLM "${PRODUCT_KEY}" Folder
    ${If} $0 != ""
    ${AndIf} $INSTDIR == "$PROGRAMFILES64\Tarn Service" ; /D asked for no other folder
        StrCpy $INSTDIR $0
    ${EndIf}
    Call IsLibrarySimulated
    ${GetParameters} $1
    ClearErrors
    ${GetOptions} $1 "/SIMULATED=" $2
    ${If} $0 = 1
    ${OrIf} $2 == 1
        !insertmacro SelectSection ${SectionSimulated}
    ${EndIf}
FunctionEnd

Function un.onInit
    SetRegView 64
    SetShellVarContext all
FunctionEnd

Section Uninstall
    ${GetParameters} $1
    ClearErrors
    ${GetOptions} $1 "/UPGRADE" $2
    ${If} ${Errors}
        StrCpy $3 0
        !insertmacro RefuseDuringFlash
    ${Else}
        StrCpy $3 1
    ${EndIf}
    ${IsTarnServiceActive} $9
    ${StopTarnService}
    ${If} $3 = 0
        ${CountFlashingTools} $0 ; a client may have started an update before the service stopped
        ${If} $0 <> 0
            ${If} $9 = 1
                ${StartTarnService} $1
            ${EndIf}
            SetErrorLevel 2
            Abort "${FLASH_RUNS}"
        ${EndIf}
    ${EndIf}
    ${CloseWindows}
    ${RemoveProgramFiles}
    Delete "$INSTDIR\tarnsim.exe"
    Delete "$INSTDIR\uninstall.exe"
    ${If} $3 = 1
        Return
    ${EndIf}

    ${DeleteTarnService}
    ; Files that the service itself keeps beside its program.
    Delete "$INSTDIR\powermodeconfig.xml"
    Delete "$INSTDIR\graphicsRGB_config.ini"
    Delete "$INSTDIR\graphicsRGB_config.ini.lock"
    Delete "$INSTDIR\temp.ini"
    Delete "$INSTDIR\log\TarnService*.log"
    RMDir "$INSTDIR\log"
    RMDir /r "$INSTDIR\function" ; the port library, the flashing tools and what they left
    RMDir /r "$INSTDIR\update.new" ; left by an installer that was cut off
    RMDir /r "$INSTDIR\update.old"
    RMDir "$INSTDIR"
    DeleteRegKey HKLM "${EVENT_SOURCE_KEY}"
    DeleteRegKey HKLM "${UNINSTALL_KEY}"
    DeleteRegKey HKLM "${PRODUCT_KEY}"
SectionEnd
