; Makes Windows restart the service when it ends without a stop request: after 5 s, 5 s and then 60 s, also
; when the service has reported that it stopped, as it does when it cannot start. Set once for an
; installation, so that an administrator's changes stay. Uses $R1 and $R2.
!macro SetRecovery
    ReadRegDWORD $R1 HKLM "${PRODUCT_KEY}" RecoverySet
    ${If} $R1 <> 1
        StrCpy $R1 0
        ${Do} ; until the end of the values, or until settings made by hand are found
            EnumRegValue $R2 HKLM "System\CurrentControlSet\Services\Tarn Service" $R1
            IntOp $R1 $R1 + 1
            ${If} $R2 == ""
            ${OrIf} $R2 == "FailureActions"
                ${Break}
            ${EndIf}
        ${Loop}
        ${If} $R2 == ""
            nsExec::ExecToLog '"$SYSDIR\sc.exe" failure "Tarn Service" reset= 86400 actions= restart/5000/restart/5000/restart/60000'
            Pop $R1
            nsExec::ExecToLog '"$SYSDIR\sc.exe" failureflag "Tarn Service" 1'
            Pop $R2
            StrCpy $R2 "$R1 $R2"
        ${EndIf}
        ${If} $R2 == "0 0"
        ${OrIf} $R2 == "FailureActions"
            WriteRegDWORD HKLM "${PRODUCT_KEY}" RecoverySet 1
        ${Else}
            DetailPrint "The recovery after a failure could not be set"
        ${EndIf}
    ${EndIf}
!macroend
!define SetRecovery '!insertmacro SetRecovery'
