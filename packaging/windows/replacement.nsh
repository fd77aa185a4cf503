; Puts a new version in the place of the installed one, or changes nothing. The new files come beside the old ones
; first; then the old ones go aside, where every one that is in use tells; then the new ones take their place.
; As long as ${NEW_FILES} stands, ${OLD_FILES} holds what is still to be put back; without it, rubbish.
; Files are listed by ${ForEachProgramFile}, of program_files.nsh. All functions use $0 to $2.

!define NEW_FILES "$INSTDIR\update.new"
!define OLD_FILES "$INSTDIR\update.old"

Var InTheWay ; the first file that could not be moved; empty: none so far
Var NotTakenBack ; the first old file that could not be put back; empty: none
Var SimulatedComputerIsNew ; 1: its files are among the new ones

; With a path below $INSTDIR on the stack, as the two below. A program that runs could be moved aside but not be
; deleted, so it counts as in the way.
Function MoveAside
    Exch $0
    ${If} $InTheWay == ""
    ${AndIf} ${FileExists} "$INSTDIR\$0"
        StrCpy $2 "$INSTDIR\$0"
        ; GENERIC_WRITE and DELETE, shared with nobody, OPEN_EXISTING
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

; The old files stand as they did. Also for what an installer left that was cut off in the middle. What cannot be put
; back, because somebody looks into it, stays aside for the next installer.
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

; The service does not run. $InTheWay names the file when nothing could be replaced.
Function ReplaceFiles
    StrCpy $InTheWay ""
    !insertmacro ForEachNewFile MoveAside
    ${If} $InTheWay == ""
    ${AndIf} ${FileExists} "${OLD_FILES}\uninstall.exe"
        ; Only the older version knows what it had besides; nothing that the service or an administrator has put
        ; beside its files is among that.
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
