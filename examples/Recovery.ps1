# A recovery application on one page, in Windows PE with PowerShell: it finds the recovery partition, reads a file there
# through a drive letter, removes the letter, and makes the PC start from that partition next time.
#
# The exit status is the code of the switch, or 9 if there is no recovery partition or its file cannot be read.
Import-Module Kestova
$nothingToRecoverFrom = 9

$manager = New-Object Kestova.Manager
try {
    if ($manager.Initialize() -ne [Kestova.InitializeResult]::Ready) {
        Write-Output 'The Virtual Disk Service cannot be reached.'
        exit $nothingToRecoverFrom
    }

    # On a GPT disk the library finds the recovery partition by type and contents and gives it a letter. On an MBR
    # disk it is partition 1, which has a letter from Windows PE.
    $letter = $null
    [void]$manager.AssignRecoveryPartition([ref]$letter)
    $disk = $manager.GetFirstInternalDriveNumber()
    if ($null -eq $letter -and $null -ne $disk) { $letter = $manager.GetDriveLetter($disk, 1) }
    if ($null -eq $letter) {
        Write-Output 'No recovery partition was found.'
        exit $nothingToRecoverFrom
    }
    Write-Output "The recovery partition is ${letter}:"

    $beginning = Get-Content "${letter}:\sources\Qelhdrcv.ini" -TotalCount 10 -ErrorAction SilentlyContinue
    $manager.RemoveRecoveryPartition()
    if (-not $beginning) {
        Write-Output 'Its Qelhdrcv.ini cannot be read.'
        exit $nothingToRecoverFrom
    }
    Write-Output 'Its Qelhdrcv.ini begins:' $beginning
}
finally {
    $manager.Dispose()
}

try {
    Set-KestovaBoot -Target Recovery -Confirm:$false | Out-Null
    Write-Output 'The next start boots the recovery partition.'
    exit 0
}
catch {
    Write-Output $_.Exception.Message
    exit (Get-KestovaProblem).Result
}
