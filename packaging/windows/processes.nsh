; Counts and ends running programs of this installation, for the installer and the uninstaller. All macros use
; $R1 to $R7.

!define TH32CS_SNAPPROCESS 2
!define PROCESS_ENTRY_BYTES 568 ; PROCESSENTRY32W of a 64-bit program; the process id is its third 32-bit word
!define RIGHT_TO_QUERY 0x1000 ; PROCESS_QUERY_LIMITED_INFORMATION
!define RIGHT_TO_END 0x101001 ; the same with PROCESS_TERMINATE and SYNCHRONIZE
!define END_TIMEOUT_MS 5000

; Inserts the macro DO for each process that runs this program, with the process's handle in $R5.
!macro ForEachProcess program rights do
    System::Call 'kernel32::CreateToolhelp32Snapshot(i ${TH32CS_SNAPPROCESS}, i 0) p .R1'
    System::Alloc ${PROCESS_ENTRY_BYTES}
    Pop $R2
    System::Call '*$R2(i ${PROCESS_ENTRY_BYTES})'
    System::Call 'kernel32::Process32FirstW(p R1, p R2) i .R3'
    ${While} $R3 <> 0
        System::Call '*$R2(i, i, i .R4)'
        System::Call 'kernel32::OpenProcess(i ${rights}, i 0, i R4) p .R5'
        ${If} $R5 P<> 0
            StrCpy $R6 ""
            System::Call 'kernel32::QueryFullProcessImageNameW(p R5, i 0, w .R6, *i ${NSIS_MAX_STRLEN})'
            ${If} $R6 == "${program}"
                !insertmacro ${do}
            ${EndIf}
            System::Call 'kernel32::CloseHandle(p R5)'
        ${EndIf}
        System::Call 'kernel32::Process32NextW(p R1, p R2) i .R3'
    ${EndWhile}
    System::Free $R2
    System::Call 'kernel32::CloseHandle(p R1)'
!macroend

!macro EndProcess
    System::Call 'kernel32::TerminateProcess(p R5, i 0)'
    System::Call 'kernel32::WaitForSingleObject(p R5, i ${END_TIMEOUT_MS})'
!macroend

!macro CountProcess
    IntOp $R7 $R7 + 1
!macroend

; The service closes its windows when it stops, but older versions did not. To be used only when the service
; has stopped, because it would take the end of a window for an answer.
!macro CloseWindows
    !insertmacro ForEachProcess "$INSTDIR\TarnServiceGui\TarnServiceGui.exe" ${RIGHT_TO_END} EndProcess
!macroend
!define CloseWindows '!insertmacro CloseWindows'

; Result: the number of flashing tools that run.
!macro CountFlashingTools result
    StrCpy $R7 0
    !insertmacro ForEachProcess "$INSTDIR\function\MCU\stm32flash.exe" ${RIGHT_TO_QUERY} CountProcess
    !insertmacro ForEachProcess "$INSTDIR\function\EC\IFU_XE.exe" ${RIGHT_TO_QUERY} CountProcess
    StrCpy ${result} $R7
!macroend
!define CountFlashingTools '!insertmacro CountFlashingTools'
!define FLASH_RUNS "A firmware is being written. Nothing has been changed; try again when it is done."
