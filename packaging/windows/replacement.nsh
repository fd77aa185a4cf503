; Puts a new version in the place of the installed one, or changes nothing. First the new files are unpacked
; into ${NEW_FILES}; then the old ones are moved into ${OLD_FILES}, which fails for a file in use; then the
; new ones take their place. While ${NEW_FILES} exists, ${OLD_FILES} holds files that must still be put back;
; without it, files that can be deleted. Files are listed by ${ForEachProgramFile}, of program_files.nsh. All
; functions use $0 to $2.

!define NEW_FILES "$INSTDIR\update.new"
!define OLD_FILES "$INSTDIR\update.old"

Var InTheWay ; the first file that could not be moved; empty: none so far
Var NotTakenBack ; the first old file that could not be put back; empty: none
Var SimulatedComputerIsNew ; 1: its files are among the new ones

; Takes a path below $INSTDIR from the stack, as PutInPlace and TakeBack do. A running program could be moved
; aside but not be deleted, so it counts as in the way.
Function MoveAside
    Exch $0
    ${If} $InTheWay == ""
    ${AndIf} ${FileExists} "$INSTDIR\$0"
        StrCpy $2 "$INSTDIR\$0"
        ; GENERIC_WRITE and DELETE, not shared, OPEN_EXISTING
        System::Call 'kernel32::CreateFileW(w r2, i 0x40010000, i 0, p 0, i 3, i 0, p 0) p .r1'
        ${If} $1 P= -1
            StrCpy $InTheWay $0
        ${Else}
            System::Call 'kernel32::CloseHandle(p r1)'
            ${GetParent} "${OLD_FILES}\$0" $1
            CreateDirectory $1
            ClearErrors
            Rename $2 "${OLD_FILES}\$0"
            ${If} ${Errors}
                StrCpy $InTheWay $0
            ${EndIf}
        ${EndIf}
    ${EndIf}
    Pop $0
FunctionEnd

Function PutInPlace
    Exch $0
    ${If} $InTheWay == ""
        ${GetParent} "$INSTDIR\$0" $1
        CreateDirectory $1
        ClearErrors
        Rename "${NEW_FILES}\$0" "$INSTDIR\$0"
        ${If} ${Errors}
            StrCpy $InTheWay $0
        ${EndIf}
    ${EndIf}
    Pop $0
FunctionEnd

Function TakeBack
    Exch $0
    ${If} ${FileExists} "${OLD_FILES}\$0"
        ${GetParent} "$INSTDIR\$0" $1
        CreateDirectory $1
        Delete "$INSTDIR\$0"
        ClearErrors
        Rename "${OLD_FILES}\$0" "$INSTDIR\$0"
        ${If} ${Errors}
        ${AndIf} $NotTakenBack == ""
            StrCpy $NotTakenBack $0
        ${EndIf}
    ${EndIf}
    Pop $0
FunctionEnd

!macro ForEachNewFile function
    ${ForEachProgramFile} ${function}
    Push uninstall.exe
    Call ${function}
    ${If} $SimulatedComputerIsNew = 1
        Push "function\inpoutx64.dll"
        Call ${function}
        Push tarnsim.exe
        Call ${function}
    ${EndIf}
!macroend

; Puts all old files back, also those that an installer left aside when it was cut off. A file that cannot be
; put back, because it is in use, stays aside for the next installer.
Function TakeAllBack
    StrCpy $NotTakenBack ""
    ${If} ${FileExists} "${NEW_FILES}\*.*"
        !insertmacro ForEachNewFile TakeBack
    ${EndIf}
    ${If} $NotTakenBack == ""
        RMDir /r "${OLD_FILES}"
        RMDir /r "${NEW_FILES}"
    ${EndIf}
FunctionEnd

; To be called when the service has stopped. $InTheWay is empty when all files have been replaced; else it
; names the file that prevented it, and the old files are put back.
Function ReplaceFiles
    StrCpy $InTheWay ""
    !insertmacro ForEachNewFile MoveAside
    ${If} $InTheWay == ""
    ${AndIf} ${FileExists} "${OLD_FILES}\uninstall.exe"
        ; Only the old uninstaller knows files that the new version does not have. It leaves alone what the
        ; service or an administrator has put beside them.
        ExecWait '"${OLD_FILES}\uninstall.exe" /S /UPGRADE _?=$INSTDIR'
    ${EndIf}
    !insertmacro ForEachNewFile PutInPlace
    ${If} $InTheWay != ""
        Call TakeAllBack
    ${Else}
        RMDir /r "${NEW_FILES}"
        RMDir /r "${OLD_FILES}"
    ${EndIf}
FunctionEnd
