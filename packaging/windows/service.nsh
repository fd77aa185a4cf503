; Operations on the service for the installer and the uninstaller. All use $R1 to $R5.

!define SERVICE_STOPPED 1
!define SERVICE_STOP_PENDING 3
!define SERVICE_RUNNING 4
!define POLL_MS 200
!define STOP_POLLS 150 ; a starting service accepts no stop in its first seconds
!define START_POLLS 150
!define EXIT_POLLS 50

; Manager in $R1, service in $R2 (0 when there is none), a SERVICE_STATUS in $R3.
!macro OpenTarnService rights
    System::Call 'advapi32::OpenSCManagerW(p0, p0, i1) p .R1'
    System::Call 'advapi32::OpenServiceW(p R1, w "Tarn Service", i ${rights}) p .R2'
    System::Call '*(i 0, i 0, i 0, i 0, i 0, i 0, i 0) p .R3'
!macroend

!macro CloseTarnService
    System::Free $R3
    ${If} $R2 P<> 0
        System::Call 'advapi32::CloseServiceHandle(p R2)'
    ${EndIf}
    System::Call 'advapi32::CloseServiceHandle(p R1)'
!macroend

; The state in $R4.
!macro QueryTarnService
    System::Call 'advapi32::QueryServiceStatus(p R2, p R3)'
    System::Call '*$R3(i, i .R4)'
!macroend

; Result: 0 when the service has stopped or does not exist, else 1.
!macro IsTarnServiceActive result
    StrCpy ${result} 0
    !insertmacro OpenTarnService 0x4
    ${If} $R2 P<> 0
        !insertmacro QueryTarnService
        ${If} $R4 <> ${SERVICE_STOPPED}
            StrCpy ${result} 1
        ${EndIf}
    ${EndIf}
    !insertmacro CloseTarnService
!macroend
!define IsTarnServiceActive '!insertmacro IsTarnServiceActive'

; Stops the service, if there is one, and waits until its program is no longer in use.
!macro StopTarnService
    !insertmacro OpenTarnService 0x24
    ${If} $R2 P<> 0
        DetailPrint "Stopping the service"
        ${For} $R5 1 ${STOP_POLLS}
            !insertmacro QueryTarnService
            ${If} $R4 = ${SERVICE_STOPPED}
                ${Break}
            ${EndIf}
            ${If} $R4 <> ${SERVICE_STOP_PENDING}
                System::Call 'advapi32::ControlService(p R2, i 1, p R3)'
            ${EndIf}
            Sleep ${POLL_MS}
        ${Next}
    ${EndIf}
    !insertmacro CloseTarnService
    ${If} ${FileExists} "$INSTDIR\TarnService.exe"
        ${For} $R5 1 ${EXIT_POLLS}
            ClearErrors
            FileOpen $R4 "$INSTDIR\TarnService.exe" a
            ${IfNot} ${Errors}
                FileClose $R4
                ${Break}
            ${EndIf}
            Sleep ${POLL_MS}
        ${Next}
    ${EndIf}
!macroend
!define StopTarnService '!insertmacro StopTarnService'

; Result: 1 when the service runs.
!macro StartTarnService result
    !insertmacro OpenTarnService 0x14
    System::Call 'advapi32::StartServiceW(p R2, i 0, p 0)'
    ${For} $R5 1 ${START_POLLS}
        !insertmacro QueryTarnService
        ${If} $R4 = ${SERVICE_RUNNING}
        ${OrIf} $R4 = ${SERVICE_STOPPED}
            ${Break}
        ${EndIf}
        Sleep ${POLL_MS}
    ${Next}
    !insertmacro CloseTarnService
    ${If} $R4 = ${SERVICE_RUNNING}
        StrCpy ${result} 1
    ${Else}
        StrCpy ${result} 0
    ${EndIf}
!macroend
!define StartTarnService '!insertmacro StartTarnService'

; Sets the service's program; nothing else of an existing registration changes. Result: 0 on failure.
!macro SetTarnServiceProgram program result
    !insertmacro OpenTarnService 0x2
    StrCpy $R4 '${program}'
    System::Call 'advapi32::ChangeServiceConfigW(p R2, i -1, i -1, i -1, w R4, p 0, p 0, p 0, p 0, p 0, p 0) i .R5'
    StrCpy ${result} $R5
    !insertmacro CloseTarnService
!macroend
!define SetTarnServiceProgram '!insertmacro SetTarnServiceProgram'

!macro DeleteTarnService
    !insertmacro OpenTarnService 0x10000
    ${If} $R2 P<> 0
        DetailPrint "Removing the service"
        System::Call 'advapi32::DeleteService(p R2)'
    ${EndIf}
    !insertmacro CloseTarnService
!macroend
!define DeleteTarnService '!insertmacro DeleteTarnService'
