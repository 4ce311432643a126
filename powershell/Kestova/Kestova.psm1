# Kestova for PowerShell 3.0 and later, also that of Windows PE. Kestova.cs and the KestovaC.dll of this PowerShell's
# bitness, with the DLLs that come with it, are beside this file.
Set-StrictMode -Version 2.0
$ErrorActionPreference = 'Stop'

# Windows looks for KestovaC.dll there.
$env:PATH = "$PSScriptRoot;$env:PATH"
if (-not ('Kestova.Manager' -as [type])) {
    Add-Type -Path (Join-Path $PSScriptRoot 'Kestova.cs')
}

# What the last command of this module met; $null before the first.
$script:LastProblem = $null

function Open-Manager {
    $manager = New-Object Kestova.Manager
    if ($manager.Initialize() -ne [Kestova.InitializeResult]::Ready) {
        $script:LastProblem = $manager.LastProblem
        $manager.Dispose()
        throw "Kestova: $($script:LastProblem)"
    }
    $manager
}

<#
.SYNOPSIS
Tells how this PC is laid out, and what it boots.
.DESCRIPTION
Changes nothing. ActivePartition is $null where no partition is active, as on a GPT disk; a letter is $null where there
is none.
.OUTPUTS
An object with Disk, Style, Type, ActivePartition, RecoveryPartition, RecoveryLetter, SystemLetter, FactoryLetter.
RecoveryPartition is the number of the partition to which Set-KestovaBoot switches: 1 on an MBR disk, $null elsewhere.
.EXAMPLE
Get-KestovaStatus
#>
function Get-KestovaStatus {
    [CmdletBinding()]
    param()
    $manager = Open-Manager
    try {
        $style = [Kestova.DiskStyle]::Unknown
        $type = [Kestova.DiskType]::Unknown
        $factory = $null
        [void]$manager.GetDiskStyle([ref]$style)
        [void]$manager.GetCurrentDiskType([ref]$type)
        [void]$manager.GetFactoryPrtDriveLetter([ref]$factory)
        $disk = $manager.GetFirstInternalDriveNumber()
        $isMbr = $style -eq [Kestova.DiskStyle]::Mbr
        $hasPartitions = $isMbr -and $null -ne $disk
        New-Object PSObject -Property @{
            Disk              = $disk
            Style             = $style
            Type              = $type
            ActivePartition   = $manager.GetActivePartitionNumber()
            RecoveryPartition = $(if ($isMbr) { 1 })
            RecoveryLetter    = $(if ($hasPartitions) { $manager.GetDriveLetter($disk, 1) })
            SystemLetter      = $(if ($hasPartitions) { $manager.GetDriveLetter($disk, 2) })
            FactoryLetter     = $factory
        }
        $script:LastProblem = $manager.LastProblem
    }
    finally {
        $manager.Dispose()
    }
}

<#
.SYNOPSIS
Chooses what this PC boots next.
.DESCRIPTION
Recovery makes the recovery partition active and records which one was; System makes that one active again. A failure is
an error with the words of the library; Get-KestovaProblem has the details.
.PARAMETER Target
Recovery or System.
.EXAMPLE
Set-KestovaBoot -Target Recovery -WhatIf
#>
function Set-KestovaBoot {
    [CmdletBinding(SupportsShouldProcess = $true, ConfirmImpact = 'High')]
    param(
        [Parameter(Mandatory = $true, Position = 0)]
        [ValidateSet('Recovery', 'System')]
        [string]$Target
    )
    if (-not $PSCmdlet.ShouldProcess('this PC', "boot $Target")) { return }
    $manager = Open-Manager
    try {
        if ($Target -eq 'Recovery') {
            $operation = 'SetRcvprtActive'
            $result = $manager.SetRcvprtActive()
        }
        else {
            $operation = 'SetSystemActive'
            $result = $manager.SetSystemActive()
        }
        $script:LastProblem = $manager.LastProblem
        $words = [Kestova.Manager]::Describe($operation, [int]$result)
        if ([int]$result -ne 0) {
            throw "Kestova: ${operation}: $words"
        }
        New-Object PSObject -Property @{ Target = $Target; Result = $result; Words = $words }
    }
    finally {
        $manager.Dispose()
    }
}

<#
.SYNOPSIS
What the last command of this module met: Code, Result, Operation, Words, Record; nothing before the first.
#>
function Get-KestovaProblem {
    [CmdletBinding()]
    param()
    $script:LastProblem
}

Export-ModuleMember -Function Get-KestovaStatus, Set-KestovaBoot, Get-KestovaProblem
